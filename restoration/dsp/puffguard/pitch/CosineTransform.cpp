// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/CosineTransform.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace DSP {

namespace {

/// Sum of the products of `a` and `b`, in eight partial sums that the compiler keeps in vectors.
float DotProduct(const float* a, const float* b, int count) noexcept
{
    constexpr int Lanes = 8;
    float sums[Lanes] = {};
    int i = 0;
    for (; i + Lanes <= count; i += Lanes) {
        for (int lane = 0; lane < Lanes; ++lane) {
            sums[lane] += a[i + lane] * b[i + lane];
        }
    }
    float total = 0;
    for (; i < count; ++i) {
        total += a[i] * b[i];
    }
    for (const float sum : sums) {
        total += sum;
    }
    return total;
}

} // namespace

CosineTransform::CosineTransform(int halfOrder)
    : size(1 << halfOrder)
    , transform(halfOrder)
    , sines(static_cast<std::size_t>(size / 2))
    , cosines(static_cast<std::size_t>(size / 2))
    , folded(static_cast<std::size_t>(size))
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
    const int half = size / 2;
    const float* const lower = values.data();
    const float* const upper = values.data() + size;
    float* const low = folded.data();
    float* const high = folded.data() + size;
    float* const differences = spectrum.data(); // free until the transform
    differences[0] = 0;
    low[0] = 0.5F * (lower[0] + upper[0]);
    for (int j = 1; j < half; ++j) {
        const float mean = 0.5F * (lower[j] + upper[-j]);
        const float difference = lower[j] - upper[-j];
        const float turned = sines[static_cast<std::size_t>(j)] * difference;
        differences[j] = difference;
        low[j] = mean - turned;
        high[-j] = mean + turned;
    }
    low[half] = lower[half];
    return 0.5F * (lower[0] - upper[0]) + DotProduct(cosines.data(), differences, half);
}

void CosineTransform::Transform(std::span<const float> values, std::span<float> out) noexcept
    UTIL_NONBLOCKING
{
    const float scale = 1.0F / static_cast<float>(size); // 2 / F, exact
    // Odd outputs are a running sum; in double it adds no rounding of its own.
    double odd = static_cast<double>(Fold(values));
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
