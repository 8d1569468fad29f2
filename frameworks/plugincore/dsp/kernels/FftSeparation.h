// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/ComplexVector.h"
#include "frameworks/plugincore/dsp/kernels/Fft.h"

/// Between the spectrum X of F real samples and the transform Z, of length M = F / 2, of the
/// complex numbers x[2 n] + i x[2 n + 1]. With A = Z[k], B = conj Z[M - k], Z[M] = Z[0] and w =
/// exp(-2 pi i k / F),
///
///     X[k] = (A + B) / 2 - i w (A - B) / 2,  X[M - k] = conj((A + B) / 2 + i w (A - B) / 2)
///
/// and A and B follow from both X the same way, with the conjugate of w. The table has w / 2.
namespace DSP::Kernels::PUFFGUARD_LEVEL {

/// Target of a separation: the bins as pairs (re, im).
struct PairTarget {
    float* spectrum;

    template <int N>
    [[gnu::always_inline]] void Put(Index bin, const ComplexVector<N>& value) const noexcept
    {
        StorePairs<N>(spectrum + 2 * bin, value);
    }

    /// The conjugates, last one first.
    template <int N>
    [[gnu::always_inline]] void PutMirrored(Index bin, const ComplexVector<N>& value) const noexcept
    {
        Put<N>(bin, MirrorConjugate(value));
    }

    void PutOne(Index bin, float re, float im) const noexcept
    {
        spectrum[2 * bin] = re;
        spectrum[2 * bin + 1] = im;
    }
};

/// The bins' powers.
struct PowerTarget {
    float* power;

    template <int N>
    [[gnu::always_inline]] void Put(Index bin, const ComplexVector<N>& value) const noexcept
    {
        Store(power + bin, value.re * value.re + value.im * value.im);
    }

    template <int N>
    [[gnu::always_inline]] void PutMirrored(Index bin, const ComplexVector<N>& value) const noexcept
    {
        Store(power + bin, Mirror<N>(value.re * value.re + value.im * value.im));
    }

    void PutOne(Index bin, float re, float im) const noexcept { power[bin] = re * re + im * im; }
};

/// Takes mirrors that nobody needs.
struct NoTarget {
    template <int N>
    [[gnu::always_inline]] void PutMirrored(Index /*bin*/,
                                            const ComplexVector<N>& /*value*/) const noexcept
    {
    }
};

/// The powers, and as pairs the bins below `binCount`.
struct LowBinTarget {
    PairTarget low;
    Index binCount;
    PowerTarget all;

    template <int N>
    [[gnu::always_inline]] void Put(Index bin, const ComplexVector<N>& value) const noexcept
    {
        all.Put<N>(bin, value);
        if (bin + N <= binCount) {
            low.Put<N>(bin, value);
        } else if (bin < binCount) {
            float pairs[2 * N];
            StorePairs<N>(pairs, value);
            const auto count = static_cast<std::size_t>(2 * (binCount - bin));
            __builtin_memcpy(low.spectrum + 2 * bin, pairs, count * sizeof(float));
        }
    }

    template <int N>
    [[gnu::always_inline]] void PutMirrored(Index bin, const ComplexVector<N>& value) const noexcept
    {
        Put<N>(bin, MirrorConjugate(value));
    }

    void PutOne(Index bin, float re, float im) const noexcept
    {
        all.PutOne(bin, re, im);
        if (bin < binCount) {
            low.PutOne(bin, re, im);
        }
    }
};

/// Copies Z[0] to Z[M], for which SplitArray parts have room.
inline void CloseCircle(SplitArray halves, Index length) noexcept
{
    halves.re[length] = halves.re[0];
    halves.im[length] = halves.im[0];
}

/// Bins `begin` to `end` - 1, at most M / 2, to `target`, and their mirrors to `mirrorTarget`; both
/// are multiples of the lanes.
template <typename Target, typename MirrorTarget>
void Separate(SplitArray halves,
              const FftTables& tables,
              Index begin,
              Index end,
              Target target,
              MirrorTarget mirrorTarget) noexcept
{
    constexpr int N = LevelLanes;
    const Index length = tables.half;
    const float* const cosines = tables.separation;
    const float* const sines = cosines + length / 2;
    for (Index k = begin; k < end; k += N) {
        const Index mirrored = length - k - (N - 1);
        const ComplexVector<N> a = halves.Get<N>(k);
        const ComplexVector<N> b = MirrorConjugate(halves.Get<N>(mirrored));
        const Vector<float, N> c = Load<N>(cosines + k);
        const Vector<float, N> s = Load<N>(sines + k);
        const ComplexVector<N> d = a - b;
        const ComplexVector<N> mean = {(a.re + b.re) * 0.5F, (a.im + b.im) * 0.5F};
        const ComplexVector<N> turned = {d.im * c - d.re * s, -(d.im * s + d.re * c)};
        target.template Put<N>(k, mean + turned);
        mirrorTarget.template PutMirrored<N>(mirrored, mean - turned);
    }
}

/// Bin M / 2, its own mirror.
template <typename Target>
void SeparateMiddle(SplitArray halves, const FftTables& tables, Target target) noexcept
{
    const Index middle = tables.half / 2;
    target.PutOne(middle, halves.re[middle], -halves.im[middle]);
}

/// Counterpart of Separate(), scaled by 2 / F, with the real and imaginary parts exchanged: the
/// forward passes then give the inverse transform, parts exchanged again. Bins below `end` and,
/// unless they are zeros, their mirrors.
template <bool hasMirrors>
void JoinExchanged(const float* spectrum,
                   const FftTables& tables,
                   Index end,
                   SplitArray halves) noexcept
{
    constexpr int N = LevelLanes;
    const Index length = tables.half;
    const float* const cosines = tables.separation;
    const float* const sines = cosines + length / 2;
    const float scale = 1.0F / static_cast<float>(length);
    const float meanScale = scale * 0.5F;
    for (Index k = 0; k < end; k += N) {
        const Index mirrored = length - k - (N - 1);
        const ComplexVector<N> a = LoadPairs<N>(spectrum + 2 * k);
        ComplexVector<N> b = {};
        if constexpr (hasMirrors) {
            b = MirrorConjugate(LoadPairs<N>(spectrum + 2 * mirrored));
        }
        const Vector<float, N> c = Load<N>(cosines + k) * scale;
        const Vector<float, N> s = Load<N>(sines + k) * scale;
        const ComplexVector<N> d = a - b;
        const ComplexVector<N> mean = {(a.re + b.re) * meanScale, (a.im + b.im) * meanScale};
        const ComplexVector<N> turned = {-(c * d.im + s * d.re), c * d.re - s * d.im};
        halves.Put<N>(k, Exchange(mean + turned));
        halves.Put<N>(mirrored, Exchange(MirrorConjugate(mean - turned)));
    }
}

/// The ends, whose imaginary parts don't count.
inline void
JoinEndsExchanged(float first, float last, const FftTables& tables, SplitArray halves) noexcept
{
    const float scale = 1.0F / static_cast<float>(tables.half);
    halves.re[0] = (first - last) * scale * 0.5F;
    halves.im[0] = (first + last) * scale * 0.5F;
}

inline void
JoinAllExchanged(const float* spectrum, const FftTables& tables, SplitArray halves) noexcept
{
    const Index length = tables.half;
    const float scale = 1.0F / static_cast<float>(length);
    JoinExchanged<true>(spectrum, tables, length / 2, halves);
    JoinEndsExchanged(spectrum[0], spectrum[2 * length], tables, halves);
    halves.re[length / 2] = -spectrum[length + 1] * scale;
    halves.im[length / 2] = spectrum[length] * scale;
}

/// The same of zeros from bin `end` on, a multiple of the lanes and at most M / 2.
inline void JoinLowExchanged(const float* spectrum,
                             const FftTables& tables,
                             Index end,
                             SplitArray halves) noexcept
{
    constexpr int N = LevelLanes;
    for (Index k = end; k <= tables.half - end; k += N) {
        halves.Put<N>(k, ComplexVector<N>{}); // also some of the mirrors, which follow
    }
    JoinExchanged<false>(spectrum, tables, end, halves);
    JoinEndsExchanged(end > 0 ? spectrum[0] : 0.0F, 0.0F, tables, halves);
}

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
