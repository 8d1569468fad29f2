// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PeakSearch.h"

#include "frameworks/plugincore/dsp/Lanes.h"

#include <algorithm>
#include <cstddef>

namespace DSP::Synapse {

namespace {

constexpr int ErasedAnyway = 5;

/// Largest of at least one value.
float FindLargest(const float* values, std::ptrdiff_t count) noexcept UTIL_NONBLOCKING
{
    Lanes even = Broadcast(values[0]);
    Lanes odd = even;
    std::ptrdiff_t i = 0;
    for (; i + 2 * LaneCount <= count; i += 2 * LaneCount) {
        const Lanes first = Load(values + i);
        const Lanes second = Load(values + i + LaneCount);
        even = first > even ? first : even;
        odd = second > odd ? second : odd;
    }
    even = odd > even ? odd : even;
    float result = std::max({even[0], even[1], even[2], even[3]});
    for (; i < count; ++i) {
        result = std::max(result, values[i]);
    }
    return result;
}

/// Zeroes from `centre` in steps of `direction` until values rise again or `count` are done.
void EraseSide(std::span<float> values, int centre, int direction, int count) noexcept
    UTIL_NONBLOCKING
{
    float previous = values[static_cast<std::size_t>(centre)];
    for (int step = 0; step < count; ++step) {
        const int at = centre + step * direction;
        float& value = values[static_cast<std::size_t>(at)];
        if (step >= ErasedAnyway && value > previous) {
            return;
        }
        previous = value;
        value = 0;
    }
}

} // namespace

int FindFirstLargest(std::span<const float> values, int first, int last) noexcept UTIL_NONBLOCKING
{
    const float* const begin = values.data() + first;
    const int count = last - first + 1;
    const float largest = FindLargest(begin, count);
    const float* const found = std::find(begin, begin + count, largest);
    return found == begin + count ? first : first + static_cast<int>(found - begin);
}

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

void ErasePeak(std::span<float> values, int centre, int last) noexcept UTIL_NONBLOCKING
{
    float& middle = values[static_cast<std::size_t>(centre)];
    const float top = middle;
    EraseSide(values, centre, -1, centre + 1);
    middle = top; // the way up compares with the unerased centre, too
    EraseSide(values, centre, 1, last - centre + 1);
}

} // namespace DSP::Synapse
