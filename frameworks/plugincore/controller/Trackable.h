// SPDX-License-Identifier: ISC
#pragma once

#include <memory>

/// Base of objects whose signal connections end when they die: a slot that is connected with such
/// an owner isn't called any more once the owner is gone. [ui]
class Trackable {
public:
    Trackable() = default;
    Trackable(const Trackable&) = delete; // what is bound to one is not bound to another
    Trackable& operator=(const Trackable&) = delete;
    virtual ~Trackable() = default;

private:
    friend class DestructorObserver;
    // Never filled: all that counts is whether it still exists.
    std::shared_ptr<const void> life = std::make_shared<char>();
};

/// Tells whether an object still exists. [ui]
class DestructorObserver {
public:
    explicit DestructorObserver(const Trackable& owner)
        : life(owner.life)
    {
    }

    bool IsDestroyed() const { return life.expired(); }
    /// Expires with the object.
    const std::weak_ptr<const void>& GetLife() const { return life; }

private:
    std::weak_ptr<const void> life;
};
