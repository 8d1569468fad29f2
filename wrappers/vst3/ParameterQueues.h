// SPDX-License-Identifier: ISC
#pragma once

#include <travesty/audio_processor.h>

#include <array>
#include <cstdint>
#include <span>

namespace Vst3 {

/// Walks through the points that a host gives with a block, in the order of time. A value counts
/// from its point on; what lies between two points is no ramp, since hosts that draw one send as
/// many points as it takes, and the effect looks at its values once in many samples only.
class ParameterQueues {
public:
    /// Of a block; further ones are ignored.
    static constexpr uint32_t MaxQueues = 32;
    static constexpr uint32_t None = ~uint32_t{0};
    static constexpr uint32_t LastFrame = None - 1;

    /// Starts with a block; `ids` are by parameter, `changes` may be null. Queues of other ids are
    /// passed over. [process]
    void Begin(std::span<const v3_param_id> ids, v3_param_changes** changes) noexcept;

    /// Place of the next point, None without one. [process]
    uint32_t NextOffset() const noexcept;

    /// Calls `set(uint32_t parameter, double value)` for each point at `frame` and before it.
    /// [process]
    template <typename Function>
    void TakeUntil(uint32_t frame, Function&& set) noexcept
    {
        for (Cursor& cursor : cursors) {
            for (; cursor.queue != nullptr && cursor.offset <= frame; Advance(cursor)) {
                set(cursor.parameter, cursor.value);
            }
        }
    }

private:
    struct Cursor {
        v3_param_value_queue** queue = nullptr; // null: at its end
        uint32_t parameter = 0;
        int32_t next = 0; // index of the point after this one
        uint32_t offset = 0;
        double value = 0;
    };

    static void Advance(Cursor& cursor) noexcept;

    // One a queue: a host should have but one for each parameter.
    std::array<Cursor, MaxQueues> cursors{};
};

} // namespace Vst3
