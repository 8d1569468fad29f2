// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/ComplexVector.h"
#include "frameworks/plugincore/dsp/kernels/Fft.h"

/// The passes of a complex transform whose length is a power of two, after T. G. Stockham: each
/// reads one array and writes another, and the results come out in order. With `stride` transforms
/// of `length` interleaved, a pass of radix R makes R * stride of them of length / R:
///
///     y[q + stride * (R * p + k)] = w^(p k) * sum over i of x[q + stride * (p + length / R * i)]
///                                   * exp(-2 pi i k / R),  w = exp(-2 pi i / length)
///
/// In the first pass, of stride 1, neighbouring p share a vector; in the others, neighbouring q.
namespace DSP::Kernels::PUFFGUARD_LEVEL {

template <int N>
struct Four {
    ComplexVector<N> v0, v1, v2, v3;
};

template <int N>
struct Eight {
    ComplexVector<N> v0, v1, v2, v3, v4, v5, v6, v7;
};

template <int N>
[[gnu::always_inline]] inline Four<N> Butterfly(const Four<N>& x) noexcept
{
    const ComplexVector<N> evenSum = x.v0 + x.v2;
    const ComplexVector<N> evenDifference = x.v0 - x.v2;
    const ComplexVector<N> oddSum = x.v1 + x.v3;
    const ComplexVector<N> oddDifference = TimesMinusI(x.v1 - x.v3);
    return {evenSum + oddSum,
            evenDifference + oddDifference,
            evenSum - oddSum,
            evenDifference - oddDifference};
}

template <int N>
[[gnu::always_inline]] inline Eight<N> Butterfly(const Eight<N>& x) noexcept
{
    const Four<N> even = Butterfly(Four<N>{x.v0, x.v2, x.v4, x.v6});
    const Four<N> odd = Butterfly(Four<N>{x.v1, x.v3, x.v5, x.v7});
    const Vector<float, N> diagonal = Broadcast<N>(0.707106781186547524F);
    const ComplexVector<N>& o1 = odd.v1;
    const ComplexVector<N>& o3 = odd.v3;
    const ComplexVector<N> t1 = {(o1.re + o1.im) * diagonal, (o1.im - o1.re) * diagonal};
    const ComplexVector<N> t2 = TimesMinusI(odd.v2);
    const ComplexVector<N> t3 = {(o3.im - o3.re) * diagonal, -(o3.re + o3.im) * diagonal};
    return {even.v0 + odd.v0,
            even.v1 + t1,
            even.v2 + t2,
            even.v3 + t3,
            even.v0 - odd.v0,
            even.v1 - t1,
            even.v2 - t2,
            even.v3 - t3};
}

template <int N>
struct FourRows {
    Vector<float, N> r0, r1, r2, r3;
};

/// Four by four lanes transposed: lanes 4 g to 4 g + 3 of row j are lane 4 g + j of v0 to v3.
template <int N, int... i>
[[gnu::always_inline]] inline FourRows<N> Transpose(const Vector<float, N>& v0,
                                                    const Vector<float, N>& v1,
                                                    const Vector<float, N>& v2,
                                                    const Vector<float, N>& v3,
                                                    std::integer_sequence<int, i...>) noexcept
{
    const auto low01 = __builtin_shufflevector(v0, v1, (i / 4 * 4 + i % 4 / 2 + i % 2 * N)...);
    const auto high01 = __builtin_shufflevector(v0, v1, (i / 4 * 4 + i % 4 / 2 + i % 2 * N + 2)...);
    const auto low23 = __builtin_shufflevector(v2, v3, (i / 4 * 4 + i % 4 / 2 + i % 2 * N)...);
    const auto high23 = __builtin_shufflevector(v2, v3, (i / 4 * 4 + i % 4 / 2 + i % 2 * N + 2)...);
    return {__builtin_shufflevector(low01, low23, (i / 4 * 4 + i % 2 + i % 4 / 2 * N)...),
            __builtin_shufflevector(low01, low23, (i / 4 * 4 + i % 2 + i % 4 / 2 * N + 2)...),
            __builtin_shufflevector(high01, high23, (i / 4 * 4 + i % 2 + i % 4 / 2 * N)...),
            __builtin_shufflevector(high01, high23, (i / 4 * 4 + i % 2 + i % 4 / 2 * N + 2)...)};
}

/// Writes lanes 4 g to 4 g + 3 of `left`, then of `right`, to `target` + 64 g.
template <int N>
[[gnu::always_inline]] inline void
StoreRow(float* target, const Vector<float, N>& left, const Vector<float, N>& right) noexcept
{
    if constexpr (N == 4) {
        Store(target, left);
        Store(target + 4, right);
    } else {
        Store(target, __builtin_shufflevector(left, right, 0, 1, 2, 3, N, N + 1, N + 2, N + 3));
        Store(target + 64,
              __builtin_shufflevector(left, right, 4, 5, 6, 7, N + 4, N + 5, N + 6, N + 7));
    }
    if constexpr (N == 16) {
        Store(target + 128,
              __builtin_shufflevector(left, right, 8, 9, 10, 11, N + 8, N + 9, N + 10, N + 11));
        Store(target + 192,
              __builtin_shufflevector(left, right, 12, 13, 14, 15, N + 12, N + 13, N + 14, N + 15));
    }
}

/// Writes row j, the left half and then the right one, to `target` + 16 j.
template <int N>
[[gnu::always_inline]] inline void
StoreTransposed(float* target, const FourRows<N>& left, const FourRows<N>& right) noexcept
{
    StoreRow<N>(target, left.r0, right.r0);
    StoreRow<N>(target + 16, left.r1, right.r1);
    StoreRow<N>(target + 32, left.r2, right.r2);
    StoreRow<N>(target + 48, left.r3, right.r3);
}

/// Writes lane j of v0 to v7 to the eight places from `at` + 16 j on.
template <int N>
[[gnu::always_inline]] inline void
StoreTransposed(SplitArray target, Index at, const Eight<N>& x) noexcept
{
    constexpr auto Indices = std::make_integer_sequence<int, N>{};
    StoreTransposed<N>(target.re + at,
                       Transpose<N>(x.v0.re, x.v1.re, x.v2.re, x.v3.re, Indices),
                       Transpose<N>(x.v4.re, x.v5.re, x.v6.re, x.v7.re, Indices));
    StoreTransposed<N>(target.im + at,
                       Transpose<N>(x.v0.im, x.v1.im, x.v2.im, x.v3.im, Indices),
                       Transpose<N>(x.v4.im, x.v5.im, x.v6.im, x.v7.im, Indices));
}

/// Factors of the butterflies of the first pass that share a vector.
template <int N>
struct FirstFactors {
    [[gnu::always_inline]] ComplexVector<N> Get(Index number) const noexcept
    {
        const float* const re = start + 2 * group * number;
        return {Load<N>(re), Load<N>(re + group)};
    }

    const float* start;
    Index group;
};

/// The outer radix 4 of the first pass, of inputs `input` + 4 j.
template <int N, typename Source>
[[gnu::always_inline]] inline Four<N> RunOuterButterfly(
    const Source& source, Index p, Index step, Index input, const FirstFactors<N>& factors) noexcept
{
    const Index from = p + step * input;
    const Four<N> b = Butterfly(Four<N>{source.template Get<N>(from),
                                        source.template Get<N>(from + 4 * step),
                                        source.template Get<N>(from + 8 * step),
                                        source.template Get<N>(from + 12 * step)});
    return {b.v0,
            b.v1 * factors.Get(3 * input),
            b.v2 * factors.Get(3 * input + 1),
            b.v3 * factors.Get(3 * input + 2)};
}

/// The inner one, of what the outer ones have made of the same power.
template <int N>
[[gnu::always_inline]] inline Four<N> RunInnerButterfly(const Four<N>& x,
                                                        const FirstFactors<N>& factors) noexcept
{
    const Four<N> b = Butterfly(x);
    return {b.v0, b.v1 * factors.Get(12), b.v2 * factors.Get(13), b.v3 * factors.Get(14)};
}

/// First pass: one of radix 4 and stride 1, and one of radix 4 and stride 4 that takes its results
/// out of the registers. `length` is at least 16 * N. FFTImpl tells how the factors lie.
template <int N, typename Source>
inline void
RunFirstPass(const Source& source, SplitArray target, Index length, const float* factors) noexcept
{
    const Index step = length / 16;
    const Index group = step < FftFirstGroup ? step : FftFirstGroup;
    for (Index p = 0; p < step; p += N) {
        const FirstFactors<N> w = {factors + 2 * FftFirstFactors * (p / group * group) + p % group,
                                   group};
        const Four<N> y0 = RunOuterButterfly<N>(source, p, step, 0, w);
        const Four<N> y1 = RunOuterButterfly<N>(source, p, step, 1, w);
        const Four<N> y2 = RunOuterButterfly<N>(source, p, step, 2, w);
        const Four<N> y3 = RunOuterButterfly<N>(source, p, step, 3, w);
        const Four<N> z0 = RunInnerButterfly<N>({y0.v0, y1.v0, y2.v0, y3.v0}, w);
        const Four<N> z1 = RunInnerButterfly<N>({y0.v1, y1.v1, y2.v1, y3.v1}, w);
        const Four<N> z2 = RunInnerButterfly<N>({y0.v2, y1.v2, y2.v2, y3.v2}, w);
        const Four<N> z3 = RunInnerButterfly<N>({y0.v3, y1.v3, y2.v3, y3.v3}, w);
        StoreTransposed<N>(
            target, 16 * p, {z0.v0, z1.v0, z2.v0, z3.v0, z0.v1, z1.v1, z2.v1, z3.v1});
        StoreTransposed<N>(
            target, 16 * p + 8, {z0.v2, z1.v2, z2.v2, z3.v2, z0.v3, z1.v3, z2.v3, z3.v3});
    }
}

/// The power of a factor, in every lane. Factors are pairs (re, im) from the first power on.
template <int N>
[[gnu::always_inline]] inline ComplexVector<N> GetPower(const float* factors, Index power) noexcept
{
    return {Broadcast<N>(factors[2 * power - 2]), Broadcast<N>(factors[2 * power - 1])};
}

/// Pass of radix 4 in the middle; `stride` is at least N. For each p the powers 1 to 3 of w^p.
template <int N>
inline void RunMiddlePass(
    SplitArray source, SplitArray target, Index length, Index stride, const float* factors) noexcept
{
    const Index quarter = length / 4;
    const Index step = stride * quarter;
    for (Index p = 0; p < quarter; ++p, factors += 6) {
        const ComplexVector<N> w1 = GetPower<N>(factors, 1);
        const ComplexVector<N> w2 = GetPower<N>(factors, 2);
        const ComplexVector<N> w3 = GetPower<N>(factors, 3);
        for (Index q = 0; q < stride; q += N) {
            const Index from = q + stride * p;
            const Index to = q + stride * 4 * p;
            const Four<N> y = Butterfly(Four<N>{source.Get<N>(from),
                                                source.Get<N>(from + step),
                                                source.Get<N>(from + 2 * step),
                                                source.Get<N>(from + 3 * step)});
            target.Put<N>(to, y.v0);
            target.Put<N>(to + stride, y.v1 * w1);
            target.Put<N>(to + 2 * stride, y.v2 * w2);
            target.Put<N>(to + 3 * stride, y.v3 * w3);
        }
    }
}

/// The first of two middle passes that are run as one, for inputs p + length / 4 * i.
template <int N>
[[gnu::always_inline]] inline Four<N>
RunOuterButterfly(SplitArray source, Index from, Index step, const float* factors) noexcept
{
    const Four<N> y = Butterfly(Four<N>{source.Get<N>(from),
                                        source.Get<N>(from + step),
                                        source.Get<N>(from + 2 * step),
                                        source.Get<N>(from + 3 * step)});
    return {y.v0,
            y.v1 * GetPower<N>(factors, 1),
            y.v2 * GetPower<N>(factors, 2),
            y.v3 * GetPower<N>(factors, 3)};
}

/// A pass of radix 4 and the next one, of length / 4 and 4 * stride, which takes its results out of
/// the registers: half the way through memory. `inner` are the factors of the next one, or null
/// where it is the last one, whose factors are 1.
template <int N, bool isLast, typename Target>
inline void RunTwoPasses(SplitArray source,
                         const Target& target,
                         Index length,
                         Index stride,
                         const float* outer,
                         const float* inner) noexcept
{
    const Index count = length / 16;
    const Index step = stride * count;
    const auto put = [&](Index to, const Four<N>& x, const float* factors) {
        const Four<N> z = Butterfly(x);
        target.template Put<N>(to, z.v0);
        if constexpr (isLast) {
            target.template Put<N>(to + 4 * stride, z.v1);
            target.template Put<N>(to + 8 * stride, z.v2);
            target.template Put<N>(to + 12 * stride, z.v3);
        } else {
            target.template Put<N>(to + 4 * stride, z.v1 * GetPower<N>(factors, 1));
            target.template Put<N>(to + 8 * stride, z.v2 * GetPower<N>(factors, 2));
            target.template Put<N>(to + 12 * stride, z.v3 * GetPower<N>(factors, 3));
        }
    };
    for (Index p = 0; p < count; ++p) {
        const float* const w = outer + 6 * p;
        const float* const v = isLast ? nullptr : inner + 6 * p;
        for (Index q = 0; q < stride; q += N) {
            const Index from = q + stride * p;
            const Index to = q + stride * 16 * p;
            const Four<N> y0 = RunOuterButterfly<N>(source, from, 4 * step, w);
            const Four<N> y1 = RunOuterButterfly<N>(source, from + step, 4 * step, w + 6 * count);
            const Four<N> y2 =
                RunOuterButterfly<N>(source, from + 2 * step, 4 * step, w + 12 * count);
            const Four<N> y3 =
                RunOuterButterfly<N>(source, from + 3 * step, 4 * step, w + 18 * count);
            put(to, {y0.v0, y1.v0, y2.v0, y3.v0}, v);
            put(to + stride, {y0.v1, y1.v1, y2.v1, y3.v1}, v);
            put(to + 2 * stride, {y0.v2, y1.v2, y2.v2, y3.v2}, v);
            put(to + 3 * stride, {y0.v3, y1.v3, y2.v3, y3.v3}, v);
        }
    }
}

/// Last pass, of length 4: all factors are 1.
template <int N, typename Target>
inline void RunLastPass4(SplitArray source, const Target& target, Index stride) noexcept
{
    for (Index q = 0; q < stride; q += N) {
        const Four<N> y = Butterfly(Four<N>{source.Get<N>(q),
                                            source.Get<N>(q + stride),
                                            source.Get<N>(q + 2 * stride),
                                            source.Get<N>(q + 3 * stride)});
        target.template Put<N>(q, y.v0);
        target.template Put<N>(q + stride, y.v1);
        target.template Put<N>(q + 2 * stride, y.v2);
        target.template Put<N>(q + 3 * stride, y.v3);
    }
}

/// Last pass, of length 8.
template <int N, typename Target>
inline void RunLastPass8(SplitArray source, const Target& target, Index stride) noexcept
{
    for (Index q = 0; q < stride; q += N) {
        const Eight<N> y = Butterfly(Eight<N>{source.Get<N>(q),
                                              source.Get<N>(q + stride),
                                              source.Get<N>(q + 2 * stride),
                                              source.Get<N>(q + 3 * stride),
                                              source.Get<N>(q + 4 * stride),
                                              source.Get<N>(q + 5 * stride),
                                              source.Get<N>(q + 6 * stride),
                                              source.Get<N>(q + 7 * stride)});
        target.template Put<N>(q, y.v0);
        target.template Put<N>(q + stride, y.v1);
        target.template Put<N>(q + 2 * stride, y.v2);
        target.template Put<N>(q + 3 * stride, y.v3);
        target.template Put<N>(q + 4 * stride, y.v4);
        target.template Put<N>(q + 5 * stride, y.v5);
        target.template Put<N>(q + 6 * stride, y.v6);
        target.template Put<N>(q + 7 * stride, y.v7);
    }
}

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
