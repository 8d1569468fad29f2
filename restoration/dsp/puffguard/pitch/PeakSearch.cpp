// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PeakSearch.h"

#include <algorithm>

namespace DSP::Synapse {

int ClimbToPeak(std::span<const float> correlation, int start, int reach, int maxLag) noexcept
    UTIL_NONBLOCKING
{
    const float* const r = correlation.data();
    int peak = start;
    while (peak > 1 && peak + reach > start && r[peak - 1] > r[peak]) {
        --peak;
    }
    while (peak + 2 < maxLag && peak < start + reach && r[peak + 1] > r[peak]) {
        ++peak;
    }
    return peak;
}

float RefineLag(std::span<const float> correlation, int peak, int fallback) noexcept
    UTIL_NONBLOCKING
{
    constexpr float FlattestBend = 1e-30F;
    const float* const r = correlation.data();
    const float bend = 2.0F * r[peak] - r[peak + 1] - r[peak - 1];
    if (bend <= FlattestBend) {
        return static_cast<float>(fallback);
    }
    const float offset = (r[peak + 1] - r[peak - 1]) / (2.0F * bend);
    // A peak at lag 1 can only come from an absurd sample rate; its lag must not reach 0.
    return std::max(static_cast<float>(peak) + std::clamp(offset, -1.0F, 1.0F), 1.0F);
}

float GetClarity(float value, float atZero) noexcept UTIL_NONBLOCKING
{
    constexpr float Tiny = 1e-6F;
    const float floor = 0.01F * atZero;
    if (atZero <= Tiny || value <= floor) {
        return 0;
    }
    if (value >= atZero + Tiny) {
        return 1;
    }
    return (value - floor) / (atZero + Tiny - floor);
}

} // namespace DSP::Synapse
