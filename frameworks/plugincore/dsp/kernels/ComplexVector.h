// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/Vector.h"

#include <cstddef>
#include <utility>

/// Complex numbers in vectors of their real and imaginary parts, for the sources that are compiled
/// for each level.
namespace DSP::Kernels::PUFFGUARD_LEVEL {

using Index = std::ptrdiff_t;

template <int N>
struct ComplexVector {
    Vector<float, N> re;
    Vector<float, N> im;
};

template <int N>
[[gnu::always_inline]] inline ComplexVector<N> operator+(const ComplexVector<N>& a,
                                                         const ComplexVector<N>& b) noexcept
{
    return {a.re + b.re, a.im + b.im};
}

template <int N>
[[gnu::always_inline]] inline ComplexVector<N> operator-(const ComplexVector<N>& a,
                                                         const ComplexVector<N>& b) noexcept
{
    return {a.re - b.re, a.im - b.im};
}

template <int N>
[[gnu::always_inline]] inline ComplexVector<N> operator*(const ComplexVector<N>& a,
                                                         const ComplexVector<N>& b) noexcept
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

template <int N>
[[gnu::always_inline]] inline ComplexVector<N> TimesMinusI(const ComplexVector<N>& a) noexcept
{
    return {a.im, -a.re};
}

/// Real and imaginary parts exchanged.
template <int N>
[[gnu::always_inline]] inline ComplexVector<N> Exchange(const ComplexVector<N>& a) noexcept
{
    return {a.im, a.re};
}

template <int N, int... i>
[[gnu::always_inline]] inline Vector<float, N> Mirror(const Vector<float, N>& lanes,
                                                      std::integer_sequence<int, i...>) noexcept
{
    return __builtin_shufflevector(lanes, lanes, (N - 1 - i)...);
}

/// Last one first.
template <int N>
[[gnu::always_inline]] inline Vector<float, N> Mirror(const Vector<float, N>& lanes) noexcept
{
    return Mirror<N>(lanes, std::make_integer_sequence<int, N>{});
}

/// The conjugates, last one first.
template <int N>
[[gnu::always_inline]] inline ComplexVector<N> MirrorConjugate(const ComplexVector<N>& a) noexcept
{
    return {Mirror<N>(a.re), -Mirror<N>(a.im)};
}

template <int N, int... i>
[[gnu::always_inline]] inline ComplexVector<N> Unzip(const Vector<float, N>& low,
                                                     const Vector<float, N>& high,
                                                     std::integer_sequence<int, i...>) noexcept
{
    if constexpr (N == 8) {
        // Within halves first, as the processor has it; compilers don't find this by themselves.
        const auto re = __builtin_shufflevector(low, high, 0, 2, 8, 10, 4, 6, 12, 14);
        const auto im = __builtin_shufflevector(low, high, 1, 3, 9, 11, 5, 7, 13, 15);
        return {__builtin_shufflevector(re, re, 0, 1, 4, 5, 2, 3, 6, 7),
                __builtin_shufflevector(im, im, 0, 1, 4, 5, 2, 3, 6, 7)};
    } else {
        return {__builtin_shufflevector(low, high, (2 * i)...),
                __builtin_shufflevector(low, high, (2 * i + 1)...)};
    }
}

/// Pairs (re, im) from any address.
template <int N>
[[gnu::always_inline]] inline ComplexVector<N> LoadPairs(const float* source) noexcept
{
    return Unzip<N>(Load<N>(source), Load<N>(source + N), std::make_integer_sequence<int, N>{});
}

/// Pairs (re, im), of the lower lanes and of the upper ones.
template <int N>
struct PairVectors {
    Vector<float, N> lower;
    Vector<float, N> upper;
};

template <int N, int... i>
[[gnu::always_inline]] inline PairVectors<N> Zip(const ComplexVector<N>& value,
                                                 std::integer_sequence<int, i...>) noexcept
{
    return {__builtin_shufflevector(value.re, value.im, (i / 2 + i % 2 * N)...),
            __builtin_shufflevector(value.re, value.im, (i / 2 + i % 2 * N + N / 2)...)};
}

template <int N>
[[gnu::always_inline]] inline PairVectors<N> Zip(const ComplexVector<N>& value) noexcept
{
    return Zip<N>(value, std::make_integer_sequence<int, N>{});
}

/// Pairs (re, im) to any address.
template <int N>
[[gnu::always_inline]] inline void StorePairs(float* target, const ComplexVector<N>& value) noexcept
{
    const PairVectors<N> pairs = Zip<N>(value);
    Store(target, pairs.lower);
    Store(target + N, pairs.upper);
}

/// An array of complex numbers whose parts lie in arrays of their own.
struct SplitArray {
    float* re;
    float* im;

    template <int N>
    [[gnu::always_inline]] ComplexVector<N> Get(Index index) const noexcept
    {
        return {Load<N>(re + index), Load<N>(im + index)};
    }

    template <int N>
    [[gnu::always_inline]] void Put(Index index, const ComplexVector<N>& value) const noexcept
    {
        Store(re + index, value.re);
        Store(im + index, value.im);
    }
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
