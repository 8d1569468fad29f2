// SPDX-License-Identifier: ISC
#pragma once

#include <atomic>
#include <cstdint>
#include <vector>

namespace Clap {

/// The user's touches in a view of the host's own, which the host sends with its events, on their
/// way to the main thread. A touch that begins before the last one of its parameter was taken goes
/// on with that one.
class HostGestures {
public:
    explicit HostGestures(uint32_t count) // of parameters; none is held
        : gestures(count)
    {
    }

    /// Of a parameter below `count`, which stands at `value`, normalised. On the thread of the
    /// events.
    void Begin(uint32_t parameter, float value) noexcept
    {
        Gesture& gesture = gestures[parameter];
        if (gesture.state == State::None) {
            gesture.before = value;
        }
        gesture.state = State::Held;
    }
    /// True when there is something for Take() now.
    bool End(uint32_t parameter) noexcept
    {
        State held = State::Held;
        return gestures[parameter].state.compare_exchange_strong(held, State::Ended);
    }

    /// Hands each touch that has ended, with the value from before it, to `use(parameter, before)`.
    /// [main]
    template <typename Use>
    void Take(Use use)
    {
        for (uint32_t parameter = 0; parameter < gestures.size(); ++parameter) {
            const float before = gestures[parameter].before;
            State ended = State::Ended;
            if (gestures[parameter].state.compare_exchange_strong(ended, State::None)) {
                use(parameter, before);
            }
        }
    }

private:
    enum class State : uint8_t { None, Held, Ended };
    struct Gesture {
        std::atomic<State> state{State::None};
        std::atomic<float> before{0};
    };

    std::vector<Gesture> gestures; // by parameter
};

} // namespace Clap
