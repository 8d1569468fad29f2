// SPDX-License-Identifier: ISC
#pragma once

#include <memory>
#include <vector>

/// Node of a tree of ownership: destroying an object destroys its children, the newest first. [ui]
class Object {
public:
    Object() = default;
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;
    virtual ~Object();

    /// Null for an object that no other one owns.
    Object* GetParent() const { return parent; }
    const std::vector<std::unique_ptr<Object>>& GetChildren() const { return children; }

    /// Takes the child over and answers it.
    template <typename Child>
    Child& AddChild(std::unique_ptr<Child> child)
    {
        Child& added = *child;
        Adopt(std::move(child));
        return added;
    }
    /// Gives the child back; null when it isn't one.
    std::unique_ptr<Object> RemoveChild(const Object& child);

private:
    void Adopt(std::unique_ptr<Object> child);

    Object* parent = nullptr;
    std::vector<std::unique_ptr<Object>> children;
};
