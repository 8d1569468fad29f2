// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <optional>

namespace Clap {

/// What the user does in the editor, on its way to the host. A change goes without its value: the
/// host gets the one that is there by then.
struct Gesture {
    enum class Kind : uint32_t { Begin, Change, End };

    Kind kind = Kind::Begin;
    uint32_t parameter = 0; ///< index
};

/// A bounded queue from any number of threads to one; neither side locks or allocates.
///
/// Method: each slot counts its turns, as in D. Vyukov's bounded queue.
class GestureQueue {
public:
    static constexpr size_t Capacity = 1024; ///< a power of two

    GestureQueue() noexcept
    {
        for (size_t i = 0; i < Capacity; ++i) {
            slots[i].turn.store(i, std::memory_order_relaxed);
        }
    }

    /// False when the queue is full; the gesture is lost then. [any]
    bool Push(const Gesture& gesture) noexcept
    {
        size_t at = tail.load(std::memory_order_relaxed);
        for (;;) {
            Slot& slot = slots[at % Capacity];
            const size_t turn = slot.turn.load(std::memory_order_acquire); // pairs with Pop()
            if (turn == at) {
                if (tail.compare_exchange_weak(at, at + 1, std::memory_order_relaxed)) {
                    slot.gesture = gesture;
                    slot.turn.store(at + 1, std::memory_order_release); // pairs with Peek()
                    return true;
                }
            } else if (turn < at) {
                return false;
            } else {
                at = tail.load(std::memory_order_relaxed);
            }
        }
    }

    /// The oldest gesture, which stays; none when there is none. [consumer]
    std::optional<Gesture> Peek() const noexcept
    {
        const Slot& slot = slots[head % Capacity];
        return slot.turn.load(std::memory_order_acquire) == head + 1 ? std::optional(slot.gesture)
                                                                     : std::nullopt;
    }

    /// Takes off what Peek() has shown. [consumer]
    void Pop() noexcept
    {
        slots[head % Capacity].turn.store(head + Capacity, std::memory_order_release);
        ++head;
    }

private:
    struct Slot {
        std::atomic<size_t> turn;
        Gesture gesture;
    };

    std::array<Slot, Capacity> slots;
    std::atomic<size_t> tail{0}; // producers
    size_t head = 0;             // consumer
};

} // namespace Clap
