// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/Lanes.h"

#include <array>
#include <cstddef>
#include <numbers>
#include <utility>

/// The passes of a complex transform of 16 or more elements, a power of two, whose parts lie in
/// arrays of their own: a first stage of radix 4, middle ones, and a last one of radix 4 or 8 that
/// needs no factors. Each reads one array and writes another, in order; all are [process].
namespace DSP::FFTStages {

using Index = std::ptrdiff_t;

struct ComplexLanes {
    Lanes re;
    Lanes im;
};

inline ComplexLanes operator+(ComplexLanes a, ComplexLanes b)
{
    return {a.re + b.re, a.im + b.im};
}

inline ComplexLanes operator-(ComplexLanes a, ComplexLanes b)
{
    return {a.re - b.re, a.im - b.im};
}

inline ComplexLanes operator*(ComplexLanes a, ComplexLanes b)
{
    return {a.re * b.re - a.im * b.im, a.re * b.im + a.im * b.re};
}

inline ComplexLanes TimesMinusI(ComplexLanes a)
{
    return {a.im, -a.re};
}

inline ComplexLanes Exchange(ComplexLanes a)
{
    return {a.im, a.re};
}

inline ComplexLanes MirrorConjugate(ComplexLanes a)
{
    return {Mirror(a.re), -Mirror(a.im)};
}

inline ComplexLanes GetPairs(const float* source)
{
    const Lanes low = Load(source);
    const Lanes high = Load(source + LaneCount);
    return {__builtin_shufflevector(low, high, 0, 2, 4, 6),
            __builtin_shufflevector(low, high, 1, 3, 5, 7)};
}

inline void PutPairs(float* target, ComplexLanes value)
{
    Store(target, __builtin_shufflevector(value.re, value.im, 0, 4, 1, 5));
    Store(target + LaneCount, __builtin_shufflevector(value.re, value.im, 2, 6, 3, 7));
}

/// Where a stage reads or writes: parts in arrays of their own.
struct SplitAccess {
    float* re;
    float* im;

    ComplexLanes Get(Index index) const { return {Load(re + index), Load(im + index)}; }
    void Put(Index index, ComplexLanes value) const
    {
        Store(re + index, value.re);
        Store(im + index, value.im);
    }
};

/// Source of the forward transform's first stage: samples 2n and 2n + 1 are the parts of element n.
struct PairSource {
    const float* samples;

    ComplexLanes Get(Index index) const { return GetPairs(samples + 2 * index); }
};

/// Target of the inverse transform's last stage, whose parts arrive exchanged.
struct ExchangedPairTarget {
    float* samples;

    void Put(Index index, ComplexLanes value) const
    {
        PutPairs(samples + 2 * index, Exchange(value));
    }
};

struct Quad {
    std::array<ComplexLanes, 4> values;
};

inline Quad Butterfly4(ComplexLanes a, ComplexLanes b, ComplexLanes c, ComplexLanes d)
{
    const ComplexLanes evenSum = a + c;
    const ComplexLanes evenDifference = a - c;
    const ComplexLanes oddSum = b + d;
    const ComplexLanes oddDifference = TimesMinusI(b - d);
    return {{evenSum + oddSum,
             evenDifference + oddDifference,
             evenSum - oddSum,
             evenDifference - oddDifference}};
}

/// Writes element i of lane j to position 4 j + i.
inline void StoreTransposed(float* target, Lanes v0, Lanes v1, Lanes v2, Lanes v3)
{
    const Lanes low01 = __builtin_shufflevector(v0, v1, 0, 4, 1, 5);
    const Lanes high01 = __builtin_shufflevector(v0, v1, 2, 6, 3, 7);
    const Lanes low23 = __builtin_shufflevector(v2, v3, 0, 4, 1, 5);
    const Lanes high23 = __builtin_shufflevector(v2, v3, 2, 6, 3, 7);
    Store(target, __builtin_shufflevector(low01, low23, 0, 1, 4, 5));
    Store(target + 4, __builtin_shufflevector(low01, low23, 2, 3, 6, 7));
    Store(target + 8, __builtin_shufflevector(high01, high23, 0, 1, 4, 5));
    Store(target + 12, __builtin_shufflevector(high01, high23, 2, 3, 6, 7));
}

/// First stage: butterflies lie side by side, so that four of them share the lanes.
template <typename Source>
void RunFirstStage(Source source, SplitAccess target, Index length, const float* factors)
{
    const Index quarter = length / 4;
    for (Index p = 0; p < quarter; p += LaneCount, factors += 6 * LaneCount) {
        const Quad quad = Butterfly4(source.Get(p),
                                     source.Get(p + quarter),
                                     source.Get(p + 2 * quarter),
                                     source.Get(p + 3 * quarter));
        const ComplexLanes y1 = quad.values[1] * ComplexLanes{Load(factors), Load(factors + 4)};
        const ComplexLanes y2 =
            quad.values[2] * ComplexLanes{Load(factors + 8), Load(factors + 12)};
        const ComplexLanes y3 =
            quad.values[3] * ComplexLanes{Load(factors + 16), Load(factors + 20)};
        StoreTransposed(target.re + 4 * p, quad.values[0].re, y1.re, y2.re, y3.re);
        StoreTransposed(target.im + 4 * p, quad.values[0].im, y1.im, y2.im, y3.im);
    }
}

/// Stage of `length` with `stride` interleaved transforms, which share the lanes.
inline void RunMiddleStage(
    SplitAccess source, SplitAccess target, Index length, Index stride, const float* factors)
{
    const Index quarter = length / 4;
    const Index step = stride * quarter;
    for (Index p = 0; p < quarter; ++p, factors += 6) {
        const ComplexLanes w1 = {Broadcast(factors[0]), Broadcast(factors[1])};
        const ComplexLanes w2 = {Broadcast(factors[2]), Broadcast(factors[3])};
        const ComplexLanes w3 = {Broadcast(factors[4]), Broadcast(factors[5])};
        for (Index q = 0; q < stride; q += LaneCount) {
            const Index from = q + stride * p;
            const Index to = q + stride * 4 * p;
            const Quad quad = Butterfly4(source.Get(from),
                                         source.Get(from + step),
                                         source.Get(from + 2 * step),
                                         source.Get(from + 3 * step));
            target.Put(to, quad.values[0]);
            target.Put(to + stride, quad.values[1] * w1);
            target.Put(to + 2 * stride, quad.values[2] * w2);
            target.Put(to + 3 * stride, quad.values[3] * w3);
        }
    }
}

template <typename Target>
void RunLastStage4(SplitAccess source, Target target, Index stride)
{
    for (Index q = 0; q < stride; q += LaneCount) {
        const Quad quad = Butterfly4(source.Get(q),
                                     source.Get(q + stride),
                                     source.Get(q + 2 * stride),
                                     source.Get(q + 3 * stride));
        for (Index k = 0; k < 4; ++k) {
            target.Put(q + k * stride, quad.values[static_cast<std::size_t>(k)]);
        }
    }
}

template <typename Target>
void RunLastStage8(SplitAccess source, Target target, Index stride)
{
    const Lanes diagonal = Broadcast(static_cast<float>(std::numbers::sqrt2 / 2));
    for (Index q = 0; q < stride; q += LaneCount) {
        const Quad even = Butterfly4(source.Get(q),
                                     source.Get(q + 2 * stride),
                                     source.Get(q + 4 * stride),
                                     source.Get(q + 6 * stride));
        const Quad odd = Butterfly4(source.Get(q + stride),
                                    source.Get(q + 3 * stride),
                                    source.Get(q + 5 * stride),
                                    source.Get(q + 7 * stride));
        const ComplexLanes& o1 = odd.values[1];
        const ComplexLanes& o3 = odd.values[3];
        const std::array<ComplexLanes, 4> turned = {
            odd.values[0],
            {(o1.re + o1.im) * diagonal, (o1.im - o1.re) * diagonal},
            TimesMinusI(odd.values[2]),
            {(o3.im - o3.re) * diagonal, -(o3.re + o3.im) * diagonal},
        };
        for (Index k = 0; k < 4; ++k) {
            target.Put(q + k * stride,
                       even.values[static_cast<std::size_t>(k)] +
                           turned[static_cast<std::size_t>(k)]);
            target.Put(q + (k + 4) * stride,
                       even.values[static_cast<std::size_t>(k)] -
                           turned[static_cast<std::size_t>(k)]);
        }
    }
}

/// Everything between the first stage, which has written to `a`, and the last. Returns the length
/// that is left, 4 or 8; `a` is then what the last stage reads, and `b` is free.
inline Index RunMiddleStages(SplitAccess& a, SplitAccess& b, Index length, const float* factors)
{
    Index rest = length / 4;
    for (Index stride = 4; rest > 8; stride *= 4) {
        RunMiddleStage(a, b, rest, stride, factors);
        factors += rest / 4 * 6;
        std::swap(a, b);
        rest /= 4;
    }
    return rest;
}

template <typename Target>
void RunLastStage(SplitAccess source, Target target, Index length, Index rest)
{
    if (rest == 8) {
        RunLastStage8(source, target, length / 8);
    } else {
        RunLastStage4(source, target, length / 4);
    }
}

} // namespace DSP::FFTStages
