// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstdint>

namespace DSP {

/// Linear crossfade between an element's output and its delayed input. [process] but for the
/// constructor and SetLength().
class BypassFader {
public:
    /// Length of a whole fade in frames; at least one frame is taken.
    BypassFader(uint32_t newChannelCount, uint32_t newLengthFrames);

    void SetLength(uint32_t newLengthFrames) noexcept;
    uint32_t GetLength() const noexcept { return lengthFrames; }
    uint32_t GetChannelCount() const noexcept { return channelCount; }

    /// Where to go from now on: the dry signal or the processed one.
    void SetTarget(bool dry) noexcept { targetDry = dry; }
    /// Arrives at the target without a fade.
    void Snap() noexcept { position = targetDry ? lengthFrames : 0; }

    /// Mixes the dry channels into the wet ones. A settled fader leaves either signal bit for bit.
    void Process(uint32_t frames, const float* const* dry, float* const* wet) noexcept
        UTIL_NONBLOCKING;

private:
    const uint32_t channelCount;
    uint32_t lengthFrames;
    bool targetDry = false;
    uint32_t position = 0; // frames of dry: 0 is all wet, lengthFrames all dry
};

} // namespace DSP
