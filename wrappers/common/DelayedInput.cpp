// SPDX-License-Identifier: ISC
#include "wrappers/common/DelayedInput.h"

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <algorithm>
#include <cmath>

namespace Wrapper {

namespace {

float Usable(float sample)
{
    return std::abs(sample) <= PLUGIN_CORE_LARGEST_SAMPLE ? sample : 0.0F; // also for a NaN
}

} // namespace

void DelayedInput::SetFormat(uint32_t channels, uint32_t newLongest, uint32_t longestRead)
{
    const size_t newSize = size_t{newLongest} + longestRead;
    rings = std::vector(channels, std::vector(newSize, 0.0F));
    size = newSize;
    end = 0;
    longest = newLongest;
    delay = std::min(delay, longest);
}

void DelayedInput::SetDelay(uint32_t samples) noexcept
{
    delay = std::min(samples, longest);
    Clear();
}

void DelayedInput::Clear() noexcept
{
    for (std::vector<float>& ring : rings) {
        std::fill(ring.begin(), ring.end(), 0.0F);
    }
    end = 0;
}

void DelayedInput::Write(const float* const* channels, uint32_t frames) noexcept
{
    const size_t count = std::min<size_t>(frames, size); // earlier ones would be overwritten
    const size_t toEnd = std::min(count, size - end);
    for (size_t channel = 0; channel < rings.size(); ++channel) {
        float* const ring = rings[channel].data();
        const float* const last = channels[channel] + frames;
        std::transform(last - count, last - (count - toEnd), ring + end, Usable);
        std::transform(last - (count - toEnd), last, ring, Usable);
    }
    end = (end + count) % size;
}

void DelayedInput::Read(uint32_t channel, float* samples, uint32_t frames) const noexcept
{
    const size_t begin = (end + size - delay - frames) % size;
    const float* const ring = rings[channel].data();
    const size_t toEnd = std::min<size_t>(frames, size - begin);
    std::copy_n(ring + begin, toEnd, samples);
    std::copy_n(ring, frames - toEnd, samples + toEnd);
}

} // namespace Wrapper
