// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <algorithm>
#include <cstddef>
#include <cstring>

/// Plain loops over arrays of floats, written so that the compiler can turn them into vector code.
///
/// Counts are floats unless stated otherwise; a count of 0 does nothing. Arrays don't
/// overlap unless the text allows it. All are [process].
namespace DSP::VectorOps {

inline void Copy(const float* source, float* target, std::size_t count) noexcept UTIL_NONBLOCKING
{
    std::copy_n(source, count, target);
}

/// Copy of arrays that may overlap.
inline void Move(const float* source, float* target, std::size_t count) noexcept UTIL_NONBLOCKING
{
    if (count > 0) {
        std::memmove(target, source, count * sizeof(float));
    }
}

inline void Set(float value, float* target, std::size_t count) noexcept UTIL_NONBLOCKING
{
    std::fill_n(target, count, value);
}

inline void Zero(float* target, std::size_t count) noexcept UTIL_NONBLOCKING
{
    Set(0.0F, target, count);
}

/// target *= factor.
inline void Scale(float factor, float* target, std::size_t count) noexcept UTIL_NONBLOCKING
{
    for (std::size_t i = 0; i < count; ++i) {
        target[i] *= factor;
    }
}

/// target = a + b, element by element.
inline void Add(const float* a, const float* b, float* target, std::size_t count) noexcept
    UTIL_NONBLOCKING
{
    for (std::size_t i = 0; i < count; ++i) {
        target[i] = a[i] + b[i];
    }
}

/// target += source, element by element.
inline void AddInPlace(const float* source, float* target, std::size_t count) noexcept
    UTIL_NONBLOCKING
{
    for (std::size_t i = 0; i < count; ++i) {
        target[i] += source[i];
    }
}

/// target = the larger of target and source, element by element.
inline void MaximumInPlace(const float* source, float* target, std::size_t count) noexcept
    UTIL_NONBLOCKING
{
    for (std::size_t i = 0; i < count; ++i) {
        target[i] = target[i] < source[i] ? source[i] : target[i];
    }
}

/// Sum in ascending order, held in double.
inline double Sum(const float* source, std::size_t count) noexcept UTIL_NONBLOCKING
{
    double sum = 0;
    for (std::size_t i = 0; i < count; ++i) {
        sum += static_cast<double>(source[i]);
    }
    return sum;
}

/// Largest value; `count` is at least 1.
inline float Maximum(const float* source, std::size_t count) noexcept UTIL_NONBLOCKING
{
    return *std::max_element(source, source + count);
}

/// Index of the first of the smallest values; 0 when there are none.
inline std::size_t IndexOfMinimum(const float* source, std::size_t count) noexcept UTIL_NONBLOCKING
{
    return static_cast<std::size_t>(std::min_element(source, source + count) - source);
}

} // namespace DSP::VectorOps
