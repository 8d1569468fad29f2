// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/CosineTransform.h"

#include "frameworks/plugincore/dsp/Lanes.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace DSP {

namespace {

/// Sum of the products of `a` and `b`; `count` is even. In double: every odd output builds on this
/// sum, so that its rounding would show in all of them.
float DotProduct(const float* a, const float* b, std::ptrdiff_t count) noexcept UTIL_NONBLOCKING
{
    double even = 0;
    double odd = 0;
    for (std::ptrdiff_t i = 0; i < count; i += 2) {
        even += static_cast<double>(a[i]) * static_cast<double>(b[i]);
        odd += static_cast<double>(a[i + 1]) * static_cast<double>(b[i + 1]);
    }
    return static_cast<float>(even + odd);
}

} // namespace

CosineTransform::CosineTransform(int halfOrder)
    : size(1 << halfOrder)
    , transform(halfOrder)
    , sines(static_cast<std::size_t>(size / 2))
    , cosines(static_cast<std::size_t>(size / 2))
    , folded(static_cast<std::size_t>(size + 1))
    , spectrum(static_cast<std::size_t>(size + 2))
{
    for (std::size_t j = 0; j < sines.size(); ++j) {
        const double angle = std::numbers::pi * static_cast<double>(j) / size;
        sines[j] = static_cast<float>(std::sin(angle));
        cosines[j] = static_cast<float>(std::cos(angle));
    }
}

/// Fills `folded` and returns output 1, from which the other odd outputs are reached by steps.
float CosineTransform::Fold(std::span<const float> values) noexcept UTIL_NONBLOCKING
{
    const std::ptrdiff_t half = size / 2;
    const float* const upper = values.data() + size;
    float* const high = folded.data() + size;
    float* const differences = spectrum.data(); // free until the transform
    for (std::ptrdiff_t j = 0; j < half; j += LaneCount) {
        const Lanes low = Load(values.data() + j);
        const Lanes mirrored = Mirror(Load(upper - j - (LaneCount - 1)));
        const Lanes mean = 0.5F * (low + mirrored);
        const Lanes difference = low - mirrored;
        const Lanes turned = Load(sines.data() + j) * difference;
        Store(differences + j, difference);
        Store(folded.data() + j, mean - turned);
        Store(high - j - (LaneCount - 1), Mirror(mean + turned));
    }
    folded[static_cast<std::size_t>(half)] = values[static_cast<std::size_t>(half)];
    differences[0] *= 0.5F;
    return DotProduct(cosines.data(), differences, half);
}

void CosineTransform::Transform(std::span<const float> values, std::span<float> out) noexcept
    UTIL_NONBLOCKING
{
    const float scale = 1.0F / static_cast<float>(size); // 2 / F, exact
    // Odd outputs are a running sum; in double it adds no rounding of its own.
    auto odd = static_cast<double>(Fold(values));
    transform.Forward(folded.data(), spectrum.data());
    const std::size_t count = out.size();
    for (std::size_t k = 0; k < count; k += 2) {
        out[k] = spectrum[k] * scale;
    }
    for (std::size_t k = 1; k < count; k += 2) {
        out[k] = static_cast<float>(odd) * scale;
        if (k + 2 < count) {
            odd -= static_cast<double>(spectrum[k + 2]);
        }
    }
}

} // namespace DSP
