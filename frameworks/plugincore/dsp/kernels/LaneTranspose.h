// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/Vector.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

/// Exchanges the lanes of `a` and `b` that differ in the bit `Distance` of their number: `a` keeps
/// its lanes without the bit and gets those of `b` behind them.
template <int Distance>
inline void ExchangeLanes(Vector<float, 4>& a, Vector<float, 4>& b) noexcept
{
    const Vector<float, 4> x = a;
    if constexpr (Distance == 1) {
        a = __builtin_shufflevector(x, b, 0, 4, 2, 6);
        b = __builtin_shufflevector(x, b, 1, 5, 3, 7);
    } else {
        a = __builtin_shufflevector(x, b, 0, 1, 4, 5);
        b = __builtin_shufflevector(x, b, 2, 3, 6, 7);
    }
}

template <int Distance>
inline void ExchangeLanes(Vector<float, 8>& a, Vector<float, 8>& b) noexcept
{
    const Vector<float, 8> x = a;
    if constexpr (Distance == 1) {
        a = __builtin_shufflevector(x, b, 0, 8, 2, 10, 4, 12, 6, 14);
        b = __builtin_shufflevector(x, b, 1, 9, 3, 11, 5, 13, 7, 15);
    } else if constexpr (Distance == 2) {
        a = __builtin_shufflevector(x, b, 0, 1, 8, 9, 4, 5, 12, 13);
        b = __builtin_shufflevector(x, b, 2, 3, 10, 11, 6, 7, 14, 15);
    } else {
        a = __builtin_shufflevector(x, b, 0, 1, 2, 3, 8, 9, 10, 11);
        b = __builtin_shufflevector(x, b, 4, 5, 6, 7, 12, 13, 14, 15);
    }
}

template <int Distance>
inline void ExchangeLanes(Vector<float, 16>& a, Vector<float, 16>& b) noexcept
{
    using V = Vector<float, 16>;
    const V x = a;
    if constexpr (Distance == 1) {
        a = __builtin_shufflevector(
            x, b, 0, 16, 2, 18, 4, 20, 6, 22, 8, 24, 10, 26, 12, 28, 14, 30);
        b = __builtin_shufflevector(
            x, b, 1, 17, 3, 19, 5, 21, 7, 23, 9, 25, 11, 27, 13, 29, 15, 31);
    } else if constexpr (Distance == 2) {
        a = __builtin_shufflevector(x, b, 0, 1, 16, 17, 4, 5, 20, 21, 8, 9, 24, 25, 12, 13, 28, 29);
        b = __builtin_shufflevector(
            x, b, 2, 3, 18, 19, 6, 7, 22, 23, 10, 11, 26, 27, 14, 15, 30, 31);
    } else if constexpr (Distance == 4) {
        a = __builtin_shufflevector(x, b, 0, 1, 2, 3, 16, 17, 18, 19, 8, 9, 10, 11, 24, 25, 26, 27);
        b = __builtin_shufflevector(
            x, b, 4, 5, 6, 7, 20, 21, 22, 23, 12, 13, 14, 15, 28, 29, 30, 31);
    } else {
        a = __builtin_shufflevector(x, b, 0, 1, 2, 3, 4, 5, 6, 7, 16, 17, 18, 19, 20, 21, 22, 23);
        b = __builtin_shufflevector(
            x, b, 8, 9, 10, 11, 12, 13, 14, 15, 24, 25, 26, 27, 28, 29, 30, 31);
    }
}

/// One pass of a transposition: pairs of rows that lie `Distance` apart.
template <int L, int Distance>
inline void ExchangeRows(Vector<float, L> (&rows)[L]) noexcept
{
    for (int i = 0; i < L; ++i) {
        if ((i & Distance) == 0) {
            ExchangeLanes<Distance>(rows[i], rows[i + Distance]);
        }
    }
}

/// Lane j of row i becomes lane i of row j.
template <int L>
inline void Transpose(Vector<float, L> (&rows)[L]) noexcept
{
    if constexpr (L > 8) {
        ExchangeRows<L, 8>(rows);
    }
    if constexpr (L > 4) {
        ExchangeRows<L, 4>(rows);
    }
    if constexpr (L > 2) {
        ExchangeRows<L, 2>(rows);
    }
    if constexpr (L > 1) {
        ExchangeRows<L, 1>(rows);
    }
}

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
