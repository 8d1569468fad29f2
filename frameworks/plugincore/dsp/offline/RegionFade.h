// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/offline/Region.h"

#include <cstdint>
#include <span>

namespace DSP {

/// Frames of a fade of `milliseconds` at `rate`, in Hz, rounded half away from zero, at the edge of
/// a box that lasts `length` frames: at most half of that.
int64_t GetFadeFrames(double milliseconds, double rate, int64_t length) noexcept;

/// How much of the processed signal there is in a region, frame by frame: 0 to 1, half a cosine
/// long at each edge, so that neither the signal nor its slope has a step.
///
/// Threads: one at a time.
class RegionFade {
public:
    /// `newRegion` outlives this.
    explicit RegionFade(const Region& newRegion)
        : region(newRegion)
    {
    }

    /// The gains of the frames from `position` on.
    void Fill(int64_t position, std::span<float> gains) const noexcept;

private:
    const Region& region;
};

/// What stands between 0, all of `dry`, and 1, all of `wet`. Both ends give the very sample.
inline float Mix(float dry, float wet, float gain) noexcept
{
    return gain >= 1.0F ? wet : dry + gain * (wet - dry);
}

} // namespace DSP
