// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/Butterfly.h"
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

/// Half the lanes of each row, from `first` on.
template <int first, int... i>
[[gnu::always_inline]] inline FourRows<8> TakeHalves(const FourRows<16>& x,
                                                     std::integer_sequence<int, i...>) noexcept
{
    return {__builtin_shufflevector(x.r0, x.r0, (first + i)...),
            __builtin_shufflevector(x.r1, x.r1, (first + i)...),
            __builtin_shufflevector(x.r2, x.r2, (first + i)...),
            __builtin_shufflevector(x.r3, x.r3, (first + i)...)};
}

/// Writes lanes 4 g to 4 g + 3 of all rows, one behind the other, to `target` + 64 g.
template <int N>
[[gnu::always_inline]] inline void StoreGroups(float* target, const FourRows<N>& x) noexcept
{
    if constexpr (N == 4) {
        Store(target, x.r0);
        Store(target + 4, x.r1);
        Store(target + 8, x.r2);
        Store(target + 12, x.r3);
    } else if constexpr (N == 8) {
        Store(target, __builtin_shufflevector(x.r0, x.r1, 0, 1, 2, 3, 8, 9, 10, 11));
        Store(target + 8, __builtin_shufflevector(x.r2, x.r3, 0, 1, 2, 3, 8, 9, 10, 11));
        Store(target + 64, __builtin_shufflevector(x.r0, x.r1, 4, 5, 6, 7, 12, 13, 14, 15));
        Store(target + 72, __builtin_shufflevector(x.r2, x.r3, 4, 5, 6, 7, 12, 13, 14, 15));
    } else {
        constexpr auto Indices = std::make_integer_sequence<int, 8>{};
        StoreGroups<8>(target, TakeHalves<0>(x, Indices));
        StoreGroups<8>(target + 128, TakeHalves<8>(x, Indices));
    }
}

/// Factors of the butterflies of the first pass that share a vector.
template <int N>
struct FirstFactors {
    [[gnu::always_inline]] ComplexVector<N> Get(Index number) const noexcept
    {
        const float* const re = start + 2 * FftFirstGroup * number;
        return {Load<N>(re), Load<N>(re + FftFirstGroup)};
    }

    const float* start;
};

/// What the first of two passes that are run as one leaves to the second: four results by each of
/// four inputs. They are more than there are registers, so they pass through this array, and loops
/// over inputs and results keep each butterfly by itself in registers.
template <int N>
struct Between {
    [[gnu::always_inline]] void Put(Index result, Index input, const ComplexVector<N>& value)
    {
        re[4 * result + input] = value.re;
        im[4 * result + input] = value.im;
    }

    /// The butterfly of one result of all inputs.
    [[gnu::always_inline]] Four<N> RunButterfly(Index result) const noexcept
    {
        const Vector<float, N>* const x = re + 4 * result;
        const Vector<float, N>* const y = im + 4 * result;
        return Butterfly(Four<N>{{x[0], y[0]}, {x[1], y[1]}, {x[2], y[2]}, {x[3], y[3]}});
    }

    Vector<float, N> re[16];
    Vector<float, N> im[16];
};

/// Results of an outer butterfly of the first pass, turned. Lane 4 g + j of them goes to lanes 4 g
/// to 4 g + 3 of result j.
template <int N>
[[gnu::always_inline]] inline void PutOuterButterfly(const Four<N>& b,
                                                     Index input,
                                                     const FirstFactors<N>& factors,
                                                     Between<N>& target) noexcept
{
    constexpr auto Indices = std::make_integer_sequence<int, N>{};
    const ComplexVector<N> y1 = b.v1 * factors.Get(3 * input);
    const ComplexVector<N> y2 = b.v2 * factors.Get(3 * input + 1);
    const ComplexVector<N> y3 = b.v3 * factors.Get(3 * input + 2);
    const FourRows<N> re = Transpose<N>(b.v0.re, y1.re, y2.re, y3.re, Indices);
    const FourRows<N> im = Transpose<N>(b.v0.im, y1.im, y2.im, y3.im, Indices);
    target.Put(0, input, {re.r0, im.r0});
    target.Put(1, input, {re.r1, im.r1});
    target.Put(2, input, {re.r2, im.r2});
    target.Put(3, input, {re.r3, im.r3});
}

/// The outer radix 4 of the first pass, of inputs `input` + 4 j.
template <int N, typename Source>
[[gnu::always_inline]] inline void RunOuterButterfly(Source source,
                                                     Index p,
                                                     Index step,
                                                     Index input,
                                                     const FirstFactors<N>& factors,
                                                     Between<N>& target) noexcept
{
    const Index from = p + step * input;
    PutOuterButterfly(Butterfly(Four<N>{source.template Get<N>(from),
                                        source.template Get<N>(from + 4 * step),
                                        source.template Get<N>(from + 8 * step),
                                        source.template Get<N>(from + 12 * step)}),
                      input,
                      factors,
                      target);
}

/// The same where all inputs but the first are 0.
template <int N, typename Source>
[[gnu::always_inline]] inline void RunOuterButterflyOfOne(Source source,
                                                          Index from,
                                                          Index input,
                                                          const FirstFactors<N>& factors,
                                                          Between<N>& target) noexcept
{
    const ComplexVector<N> x = source.template Get<N>(from);
    PutOuterButterfly(Four<N>{x, x, x, x}, input, factors, target);
}

/// Lane `lane` of each group of four, in all four.
template <int N, int lane, int... i>
[[gnu::always_inline]] inline ComplexVector<N> Spread(const ComplexVector<N>& x,
                                                      std::integer_sequence<int, i...>) noexcept
{
    return {__builtin_shufflevector(x.re, x.re, (i / 4 * 4 + lane)...),
            __builtin_shufflevector(x.im, x.im, (i / 4 * 4 + lane)...)};
}

/// The inner one, of result `lane` of the outer one: lane 4 g + k of its own result r belongs to
/// element 4 r + k of butterfly 4 g + lane.
template <int N, int lane>
[[gnu::always_inline]] inline void RunInnerButterfly(const Between<N>& source,
                                                     const FirstFactors<N>& factors,
                                                     SplitArray target,
                                                     Index at) noexcept
{
    constexpr auto Indices = std::make_integer_sequence<int, N>{};
    const Four<N> b = source.RunButterfly(lane);
    const ComplexVector<N> z1 = b.v1 * Spread<N, lane>(factors.Get(12), Indices);
    const ComplexVector<N> z2 = b.v2 * Spread<N, lane>(factors.Get(13), Indices);
    const ComplexVector<N> z3 = b.v3 * Spread<N, lane>(factors.Get(14), Indices);
    StoreGroups<N>(target.re + at + 16 * lane, {b.v0.re, z1.re, z2.re, z3.re});
    StoreGroups<N>(target.im + at + 16 * lane, {b.v0.im, z1.im, z2.im, z3.im});
}

/// The inner ones, of all results of the outer ones.
template <int N>
[[gnu::always_inline]] inline void RunInnerButterflies(const Between<N>& source,
                                                       const FirstFactors<N>& factors,
                                                       SplitArray target,
                                                       Index at) noexcept
{
    RunInnerButterfly<N, 0>(source, factors, target, at);
    RunInnerButterfly<N, 1>(source, factors, target, at);
    RunInnerButterfly<N, 2>(source, factors, target, at);
    RunInnerButterfly<N, 3>(source, factors, target, at);
}

template <int N>
[[gnu::always_inline]] inline FirstFactors<N> GetFirstFactors(const float* factors,
                                                              Index p) noexcept
{
    const Index group = p / FftFirstGroup * FftFirstGroup;
    return {factors + 2 * FftFirstFactors * group + (p - group)};
}

/// First pass: one of radix 4 and stride 1, and one of radix 4 and stride 4 that takes its results
/// while they are at hand. `length` is at least 16 * N.
template <int N, typename Source>
inline void
RunFirstPass(Source source, SplitArray target, Index length, const float* factors) noexcept
{
    const Index step = length / 16;
    for (Index p = 0; p < step; p += N) {
        const FirstFactors<N> w = GetFirstFactors<N>(factors, p);
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the outer butterflies fill it
        Between<N> between;
        for (Index input = 0; input < 4; ++input) {
            RunOuterButterfly<N>(source, p, step, input, w, between);
        }
        RunInnerButterflies(between, w, target, 16 * p);
    }
}

/// The same of a source of which only the first `inputs` sixteenths, at most four, aren't 0.
template <int N, typename Source>
inline void RunFirstPassOfFew(
    Source source, Index inputs, SplitArray target, Index length, const float* factors) noexcept
{
    const Index step = length / 16;
    Between<N> between = {}; // what isn't filled stays 0
    for (Index p = 0; p < step; p += N) {
        const FirstFactors<N> w = GetFirstFactors<N>(factors, p);
        for (Index input = 0; input < inputs; ++input) {
            RunOuterButterflyOfOne<N>(source, p + step * input, input, w, between);
        }
        RunInnerButterflies(between, w, target, 16 * p);
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

/// The first of two middle passes that are run as one, for inputs `input` + 4 j.
template <int N>
[[gnu::always_inline]] inline void RunOuterButterfly(SplitArray source,
                                                     Index from,
                                                     Index step,
                                                     Index input,
                                                     const float* factors,
                                                     Between<N>& target) noexcept
{
    const Four<N> y = Butterfly(Four<N>{source.Get<N>(from),
                                        source.Get<N>(from + step),
                                        source.Get<N>(from + 2 * step),
                                        source.Get<N>(from + 3 * step)});
    target.Put(0, input, y.v0);
    target.Put(1, input, y.v1 * GetPower<N>(factors, 1));
    target.Put(2, input, y.v2 * GetPower<N>(factors, 2));
    target.Put(3, input, y.v3 * GetPower<N>(factors, 3));
}

/// Results of the second one, without the factors, which are 1, where it is the last pass.
template <int N, bool isLast, typename Target>
[[gnu::always_inline]] inline void PutInnerButterfly(
    const Four<N>& z, const float* factors, Target target, Index to, Index step) noexcept
{
    target.template Put<N>(to, z.v0);
    if constexpr (isLast) {
        target.template Put<N>(to + step, z.v1);
        target.template Put<N>(to + 2 * step, z.v2);
        target.template Put<N>(to + 3 * step, z.v3);
    } else {
        target.template Put<N>(to + step, z.v1 * GetPower<N>(factors, 1));
        target.template Put<N>(to + 2 * step, z.v2 * GetPower<N>(factors, 2));
        target.template Put<N>(to + 3 * step, z.v3 * GetPower<N>(factors, 3));
    }
}

/// A pass of radix 4 and the next one, of length / 4 and 4 * stride, which takes its results while
/// they are at hand: half the way through memory. `inner` are the factors of the next one.
template <int N, bool isLast, typename Target>
inline void RunTwoPasses(SplitArray source,
                         Target target,
                         Index length,
                         Index stride,
                         const float* outer,
                         const float* inner) noexcept
{
    const Index count = length / 16;
    const Index step = stride * count;
    for (Index p = 0; p < count; ++p) {
        for (Index q = 0; q < stride; q += N) {
            const Index from = q + stride * p;
            const Index to = q + stride * 16 * p;
            // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): the outer butterflies fill it
            Between<N> between;
            for (Index input = 0; input < 4; ++input) {
                RunOuterButterfly<N>(source,
                                     from + step * input,
                                     4 * step,
                                     input,
                                     outer + 6 * (p + count * input),
                                     between);
            }
            for (Index power = 0; power < 4; ++power) {
                PutInnerButterfly<N, isLast>(between.RunButterfly(power),
                                             isLast ? nullptr : inner + 6 * p,
                                             target,
                                             to + stride * power,
                                             4 * stride);
            }
        }
    }
}

/// Last pass, of length 4: all factors are 1.
template <int N, typename Target>
inline void RunLastPass4(SplitArray source, Target target, Index stride) noexcept
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
inline void RunLastPass8(SplitArray source, Target target, Index stride) noexcept
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
