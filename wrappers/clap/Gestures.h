// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/clap/GestureQueue.h"

#include <atomic>
#include <cstdint>
#include <optional>
#include <vector>

namespace Clap {

/// The gestures of all parameters on their way to the host. Some may get lost when too many wait,
/// but each that begins for the host ends for it, and none ends or begins twice.
class Gestures {
public:
    explicit Gestures(uint32_t count)
        : isHeld(count)
        , isOpen(count)
    {
    }

    /// Of a parameter below `count`. False when the queue is full; the gesture is lost then. [any]
    bool Add(const Gesture& gesture) noexcept
    {
        if (gesture.kind != Gesture::Kind::Change) {
            isHeld[gesture.parameter] = gesture.kind == Gesture::Kind::Begin;
        }
        return queue.Push(gesture);
    }

    /// Hands what waits to `push(gesture)`, until that answers false: then the rest waits on.
    /// [consumer]
    template <typename Push>
    void Send(Push&& push) noexcept
    {
        while (const std::optional<Gesture> gesture = queue.Peek()) {
            if (!SendOne(*gesture, push)) {
                return;
            }
            queue.Pop();
        }
        for (uint32_t i = 0; i < isHeld.size(); ++i) {
            // The one who let go found the queue full, or its word is still to come.
            if (isOpen[i] && !isHeld[i] && !SendOne({Gesture::Kind::End, i}, push)) {
                return;
            }
        }
    }

private:
    template <typename Push>
    bool SendOne(const Gesture& gesture, Push& push) noexcept
    {
        const bool isBegin = gesture.kind == Gesture::Kind::Begin;
        const bool isChange = gesture.kind == Gesture::Kind::Change;
        if (!isChange && isOpen[gesture.parameter] == isBegin) {
            return true; // one that the host already knows of
        }
        if (!push(gesture)) {
            return false;
        }
        if (!isChange) {
            isOpen[gesture.parameter] = isBegin;
        }
        return true;
    }

    GestureQueue queue;
    std::vector<std::atomic<bool>> isHeld; // producers: the user's hand is on the control
    std::vector<bool> isOpen;              // consumer: the host knows of it
};

} // namespace Clap
