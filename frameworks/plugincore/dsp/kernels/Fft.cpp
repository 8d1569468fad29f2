// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/Fft.h"

#include "frameworks/plugincore/dsp/kernels/FftPasses.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

// Fewer serve the shortest transforms, and the first pass has more values than registers as it is.
constexpr int NarrowLanes = 4;
constexpr int FirstLanes = LevelLanes < 8 ? LevelLanes : 8;

/// Source of the first pass: samples 2 n and 2 n + 1 are the parts of element n.
struct PairSource {
    const float* samples;

    template <int N>
    [[gnu::always_inline]] ComplexVector<N> Get(Index index) const noexcept
    {
        return LoadPairs<N>(samples + 2 * index);
    }
};

/// The same, of the samples' products with a window.
struct WindowedPairSource {
    const float* samples;
    const float* window;

    template <int N>
    [[gnu::always_inline]] ComplexVector<N> Get(Index index) const noexcept
    {
        const float* const x = samples + 2 * index;
        const float* const w = window + 2 * index;
        return Unzip<N>(Load<N>(x) * Load<N>(w),
                        Load<N>(x + N) * Load<N>(w + N),
                        std::make_integer_sequence<int, N>{});
    }
};

/// Target of the inverse transform's last pass, whose parts arrive exchanged.
struct ExchangedPairTarget {
    float* samples;

    template <int N>
    [[gnu::always_inline]] void Put(Index index, const ComplexVector<N>& value) const noexcept
    {
        StorePairs<N>(samples + 2 * index, Exchange(value));
    }
};

SplitArray GetArray(const FftTables& tables, Index number) noexcept
{
    const Index part = tables.half + FftPadding;
    float* const start = tables.work + 2 * part * number;
    return {start, start + part};
}

/// What the passes before the last step leave: `from` is what the last step reads, `free` may be
/// written.
struct Passed {
    SplitArray from;
    SplitArray free;
    Index length;         // 4, 8, or 16 for two passes in one
    const float* factors; // of the first one of two
};

template <typename Source>
Passed RunAllButLastStep(const FftTables& tables, const Source& source) noexcept
{
    SplitArray from = GetArray(tables, 0);
    SplitArray to = GetArray(tables, 1);
    if (tables.half < FftFirstRadix * FirstLanes) {
        RunFirstPass<NarrowLanes>(source, from, tables.half, tables.first);
    } else {
        RunFirstPass<FirstLanes>(source, from, tables.half, tables.first);
    }
    Index length = tables.half / FftFirstRadix;
    Index stride = FftFirstRadix;
    const float* factors = tables.middle;
    while (length > 16) {
        const float* const next = factors + length / 4 * 6;
        const bool areTwo = length > 32;
        if (areTwo) {
            RunTwoPasses<LevelLanes, false>(from, to, length, stride, factors, next);
        } else {
            RunMiddlePass<LevelLanes>(from, to, length, stride, factors);
        }
        const SplitArray swapped = from;
        from = to;
        to = swapped;
        factors = areTwo ? next + length / 16 * 6 : next;
        length /= areTwo ? 16 : 4;
        stride *= areTwo ? 16 : 4;
    }
    return {from, to, length, factors};
}

template <typename Target>
void RunLastStep(const Passed& passed, const Target& target, Index half) noexcept
{
    if (passed.length == 16) {
        RunTwoPasses<LevelLanes, true>(passed.from, target, 16, half / 16, passed.factors, nullptr);
    } else if (passed.length == 8) {
        RunLastPass8<LevelLanes>(passed.from, target, half / 8);
    } else {
        RunLastPass4<LevelLanes>(passed.from, target, half / 4);
    }
}

/// From the transform Z of even + i odd samples to the spectrum X: with A = Z[k], B = conj Z[M - k]
/// and w = exp(-2 pi i k / F), X[k] = (A + B) / 2 - i w (A - B) / 2, and the conjugate of the sum
/// with the other sign is X[M - k]. The table has w / 2.
void Separate(SplitArray halves, const FftTables& tables, float* spectrum) noexcept
{
    constexpr int N = LevelLanes;
    const Index length = tables.half;
    const float* const cosines = tables.separation;
    const float* const sines = cosines + length / 2;
    halves.re[length] = halves.re[0];
    halves.im[length] = halves.im[0];
    const float middleRe = halves.re[length / 2];
    const float middleIm = halves.im[length / 2];
    for (Index k = 0; k < length / 2; k += N) {
        const Index mirrored = length - k - (N - 1);
        const ComplexVector<N> a = halves.Get<N>(k);
        const ComplexVector<N> b = MirrorConjugate(halves.Get<N>(mirrored));
        const Vector<float, N> c = Load<N>(cosines + k);
        const Vector<float, N> s = Load<N>(sines + k);
        const ComplexVector<N> d = a - b;
        const ComplexVector<N> mean = {(a.re + b.re) * 0.5F, (a.im + b.im) * 0.5F};
        const ComplexVector<N> turned = {d.im * c - d.re * s, -(d.im * s + d.re * c)};
        StorePairs<N>(spectrum + 2 * k, mean + turned);
        StorePairs<N>(spectrum + 2 * mirrored, MirrorConjugate(mean - turned));
    }
    spectrum[length] = middleRe;
    spectrum[length + 1] = -middleIm;
}

/// Counterpart of Separate(), scaled by 2 / F, with the real and imaginary parts exchanged: the
/// forward passes then give the inverse transform, parts exchanged again.
void JoinExchanged(const float* spectrum, const FftTables& tables, SplitArray halves) noexcept
{
    constexpr int N = LevelLanes;
    const Index length = tables.half;
    const float* const cosines = tables.separation;
    const float* const sines = cosines + length / 2;
    const float scale = 1.0F / static_cast<float>(length);
    const float meanScale = scale * 0.5F;
    for (Index k = 0; k < length / 2; k += N) {
        const Index mirrored = length - k - (N - 1);
        const ComplexVector<N> a = LoadPairs<N>(spectrum + 2 * k);
        const ComplexVector<N> b = MirrorConjugate(LoadPairs<N>(spectrum + 2 * mirrored));
        const Vector<float, N> c = Load<N>(cosines + k) * scale;
        const Vector<float, N> s = Load<N>(sines + k) * scale;
        const ComplexVector<N> d = a - b;
        const ComplexVector<N> mean = {(a.re + b.re) * meanScale, (a.im + b.im) * meanScale};
        const ComplexVector<N> turned = {-(c * d.im + s * d.re), c * d.re - s * d.im};
        halves.Put<N>(k, Exchange(mean + turned));
        halves.Put<N>(mirrored, Exchange(MirrorConjugate(mean - turned)));
    }
    halves.re[0] = (spectrum[0] - spectrum[2 * length]) * scale * 0.5F;
    halves.im[0] = (spectrum[0] + spectrum[2 * length]) * scale * 0.5F;
    halves.re[length / 2] = -spectrum[length + 1] * scale;
    halves.im[length / 2] = spectrum[length] * scale;
}

template <typename Source>
void RunForward(const FftTables& tables, const Source& source, float* spectrum) noexcept
{
    const Passed passed = RunAllButLastStep(tables, source);
    RunLastStep(passed, passed.free, tables.half);
    Separate(passed.free, tables, spectrum);
}

void Forward(const FftTables& tables, const float* samples, float* spectrum) noexcept
{
    RunForward(tables, PairSource{samples}, spectrum);
}

void ForwardOfProduct(const FftTables& tables,
                      const float* samples,
                      const float* window,
                      float* spectrum) noexcept
{
    RunForward(tables, WindowedPairSource{samples, window}, spectrum);
}

void Inverse(const FftTables& tables, const float* spectrum, float* samples) noexcept
{
    const SplitArray halves = GetArray(tables, 1); // which the first pass reads and frees
    JoinExchanged(spectrum, tables, halves);
    const Passed passed = RunAllButLastStep(tables, halves);
    RunLastStep(passed, ExchangedPairTarget{samples}, tables.half);
}

} // namespace

constinit const FftKernels fft = {
    .forward = Forward,
    .forwardOfProduct = ForwardOfProduct,
    .inverse = Inverse,
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
