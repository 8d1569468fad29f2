// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/RunningHann.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace DSP {

void RunningHann<float>::configure(uint32_t newHalfLength, float newFillValue)
{
    halfLength = newHalfLength;
    fillValue = newFillValue;
    const uint32_t length = 2 * halfLength + 1;
    const double half = std::numbers::pi / length;
    // A window of one value is a plain pass: without the harmonic only the boxcar sum is left.
    const bool hasHarmonic = halfLength > 0;
    c = hasHarmonic ? static_cast<float>(std::cos(2 * half)) : 0.0F;
    s = hasHarmonic ? static_cast<float>(std::sin(2 * half)) : 0.0F;
    g = hasHarmonic ? static_cast<float>(-std::cos(half)) : 0.0F;
    h = hasHarmonic ? static_cast<float>(std::sin(half)) : 0.0F;
    scale = static_cast<float>(1.0 / length);
    delayLine.resize(length);
    primed = false;
    reset();
}

void RunningHann<float>::reset() noexcept UTIL_NONBLOCKING
{
    if (primed) {
        return;
    }
    std::fill(delayLine.begin(), delayLine.end(), fillValue);
    position = 0;
    re = im = sum = 0;
    freshRe = freshIm = freshSum = 0;
    if (fillValue != 0) {
        for (std::size_t i = 0; i < delayLine.size(); ++i) {
            const float turned = c * re + s * im + g * fillValue;
            im = c * im - s * re + h * fillValue;
            re = turned;
        }
        sum = static_cast<float>(delayLine.size()) * fillValue;
    }
    primed = true;
}

float RunningHann<float>::process(float x) noexcept UTIL_NONBLOCKING
{
    primed = false;
    const float d = x - delayLine[position];
    delayLine[position] = x;
    const float newRe = c * re + s * im + g * d;
    im = c * im - s * re + h * d;
    re = newRe;
    sum += d;
    const float newFreshRe = c * freshRe + s * freshIm + g * x;
    freshIm = c * freshIm - s * freshRe + h * x;
    freshRe = newFreshRe;
    freshSum += x;
    // The result comes from the pair that has served the whole window, also in the step that ends
    // it.
    const float result = sum + re;
    if (++position == delayLine.size()) {
        position = 0;
        re = freshRe;
        im = freshIm;
        sum = freshSum;
        freshRe = freshIm = freshSum = 0;
    }
    return result;
}

void RunningHanns<float>::configure(std::size_t count, uint32_t halfLength, float fillValue)
{
    entries.resize(count);
    for (RunningHann<float>& entry : entries) {
        entry.configure(halfLength, fillValue);
    }
}

void RunningHanns<float>::reset() noexcept UTIL_NONBLOCKING
{
    for (RunningHann<float>& entry : entries) {
        entry.reset();
    }
}

} // namespace DSP
