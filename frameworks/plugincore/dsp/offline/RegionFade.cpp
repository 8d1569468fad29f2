// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/offline/RegionFade.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace DSP {

namespace {

// `place` frames into a rise of `length`; each frame stands for its middle.
float GetRise(int64_t place, int64_t length) noexcept
{
    const double share = (static_cast<double>(place) + 0.5) / static_cast<double>(length);
    return static_cast<float>(0.5 - 0.5 * std::cos(std::numbers::pi * share));
}

float GetGain(const Region::Part& part, int64_t frame) noexcept
{
    float gain = 1;
    const int64_t risen = frame - part.GetFadeInBegin();
    if (risen < part.fadeIn) {
        gain = GetRise(risen, part.fadeIn);
    }
    const int64_t left = part.GetEnd() - 1 - frame;
    if (left < part.fadeOut) {
        gain = std::min(gain, GetRise(left, part.fadeOut));
    }
    return gain;
}

} // namespace

int64_t GetFadeFrames(double milliseconds, double rate, int64_t length) noexcept
{
    const double most = std::floor(static_cast<double>(length) / 2);
    return std::llround(std::clamp(rate * milliseconds * 0.001, 0.0, most));
}

void RegionFade::Fill(int64_t position, std::span<float> gains) const noexcept
{
    std::fill(gains.begin(), gains.end(), 0.0F);
    const int64_t end = position + static_cast<int64_t>(gains.size());
    for (const Region::Part& part : region.GetParts()) {
        const int64_t from = std::max(position, part.GetFadeInBegin());
        const int64_t to = std::min(end, part.GetEnd());
        for (int64_t frame = from; frame < to; ++frame) {
            float& gain = gains[static_cast<std::size_t>(frame - position)];
            gain = std::max(gain, GetGain(part, frame));
        }
    }
}

} // namespace DSP
