// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/signal/FFTImpl.h"
#include "frameworks/qobase/util/Realtime.h"

#include <algorithm>
#include <array>
#include <cstdint>

/// How the work that a hop leaves is dealt out over the steps of the next one.
///
/// At 96 kHz a host's block of 64 frames is one step, at 44.1 and 48 kHz it is two: neither a step
/// nor two neighbours may have much more than their share. At high rates transforms and
/// correlations are most of the work, at low ones the tracker's runs. The search, which takes much
/// where it finds something, is kept apart from both. The first hop after a reset is the longest:
/// nothing that the first pieces touch is in the cache, so they come one by one.
namespace DSP::HopSchedule {

/// Steps of a hop, of equal length.
constexpr uint32_t StepCount = 16;

enum class Task : uint8_t {
    None,
    Measure, ///< the frame's energy: all channels have been transformed. Totals are read at any
             ///< time, so this one's place shows in reports.
    Detect,  ///< its detection value, after that
    Search,  ///< for a peak, with the pitch: the tracker's work has been done
    Repair,  ///< of what has been found; the next frame is the open one from here on
};

/// What a step has.
struct Step {
    uint8_t transformParts = 0; ///< of all channels, there and back; with more than two see below
    uint8_t trackerParts = 0;   ///< of PitchDetect::BlockParts: correlations, then runs
    Task task = Task::None;
};

using Table = std::array<Step, StepCount>;

constexpr Table ForMono = {{
    {1, 0},
    {2, 0},
    {1, 1},
    {1, 2, Task::Measure},
    {0, 3},
    {0, 2},
    {0, 1},
    {0, 1},
    {1, 3}, // the last two parts of the correlations, and a run
    {0, 3},
    {0, 3},
    {0, 3},
    {0, 3},
    {0, 3, Task::Detect},
    {0, 0, Task::Search},
    {0, 0, Task::Repair}, // completes the next hop, too
}};

constexpr Table ForStereo = {{
    {1, 0},
    {2, 0},
    {1, 1},
    {3, 0, Task::Measure},
    {1, 3},
    {1, 2},
    {2, 1},
    {0, 2},
    {0, 2},
    {0, 5}, // the last part of the correlations, and four runs
    {0, 4},
    {0, 4},
    {0, 4, Task::Detect},
    {0, 0, Task::Search},
    {1, 0, Task::Repair},
    {0, 0}, // completes the next hop, with delay lines of both channels
}};

/// Transforms are most of the work: the steps up to the measuring share them.
constexpr Table ForMoreChannels = {{
    {0, 1},
    {0, 2},
    {0, 2},
    {0, 2},
    {0, 2},
    {0, 2},
    {0, 2},
    {0, 2},
    {0, 2},
    {0, 2},
    {0, 2},
    {0, 3, Task::Measure},
    {0, 4, Task::Detect},
    {0, 0, Task::Search},
    {0, 0, Task::Repair},
    {0, 0},
}};

constexpr const Table& GetTable(uint32_t channels) noexcept UTIL_NONBLOCKING
{
    if (channels > 2) {
        return ForMoreChannels;
    }
    return channels == 1 ? ForMono : ForStereo;
}

/// A part of a transform: forward for the hop that was completed last, or back for the one that
/// goes out next. A frame that goes out as it came in has none back.
struct TransformPart {
    uint32_t channel;
    bool isForward;
    FFTPart part;
};

/// What comes at this place of those of a hop. With one or two channels all go forward first; with
/// more, each channel's transforms there and back follow each other, so that the load is even also
/// where none goes back.
constexpr TransformPart GetTransformPart(uint32_t number, uint32_t channels) noexcept
    UTIL_NONBLOCKING
{
    constexpr auto Parts = static_cast<uint32_t>(FFTParts.size());
    const uint32_t transform = number / Parts;
    const FFTPart part = FFTParts[number % Parts];
    if (channels > 2) {
        return {transform / 2, transform % 2 == 0, part};
    }
    return {transform % channels, transform < channels, part};
}

/// Parts of transforms that are done at the end of a step.
constexpr uint32_t GetTransformPartsDone(uint32_t step, uint32_t channels) noexcept UTIL_NONBLOCKING
{
    if (channels > 2) {
        constexpr uint32_t Sharing = 11;
        const auto parts = static_cast<uint32_t>(2 * FFTParts.size()) * channels;
        return (parts * std::min(step + 1, Sharing) + Sharing - 1) / Sharing;
    }
    uint32_t parts = 0;
    for (uint32_t i = 0; i <= step; ++i) {
        parts += GetTable(channels)[i].transformParts;
    }
    return parts;
}

} // namespace DSP::HopSchedule
