// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/Fft.h"

#include "frameworks/plugincore/dsp/kernels/FftPasses.h"
#include "frameworks/plugincore/dsp/kernels/FftSeparation.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

// Of the first pass of the shortest transforms, which have no more butterflies in it.
constexpr int NarrowLanes = 4;

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

/// The passes between the first, whose results lie in array 0, and the last step.
Passed RunMiddlePasses(const FftTables& tables) noexcept
{
    SplitArray from = GetArray(tables, 0);
    SplitArray to = GetArray(tables, 1);
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

template <typename Source>
Passed RunAllButLastStep(const FftTables& tables, Source source) noexcept
{
    const SplitArray target = GetArray(tables, 0);
    if (tables.half < FftFirstRadix * LevelLanes) {
        RunFirstPass<NarrowLanes>(source, target, tables.half, tables.first);
    } else {
        RunFirstPass<LevelLanes>(source, target, tables.half, tables.first);
    }
    return RunMiddlePasses(tables);
}

template <typename Target>
void RunLastStep(const Passed& passed, Target target, Index half) noexcept
{
    if (passed.length == 16) {
        RunTwoPasses<LevelLanes, true>(passed.from, target, 16, half / 16, passed.factors, nullptr);
    } else if (passed.length == 8) {
        RunLastPass8<LevelLanes>(passed.from, target, half / 8);
    } else {
        RunLastPass4<LevelLanes>(passed.from, target, half / 4);
    }
}

/// Leaves the transform where it returns, Z[M] included.
SplitArray RunLastPass(const FftTables& tables, const Passed& passed) noexcept
{
    RunLastStep(passed, passed.free, tables.half);
    CloseCircle(passed.free, tables.half);
    return passed.free;
}

template <typename Source>
SplitArray TransformPairs(const FftTables& tables, Source source) noexcept
{
    return RunLastPass(tables, RunAllButLastStep(tables, source));
}

/// The same of `count` products, at most a quarter of what the transform takes, and zeros.
SplitArray TransformPaddedProduct(const FftTables& tables,
                                  const float* samples,
                                  const float* window,
                                  Index count) noexcept
{
    const Index sixteenth = tables.half / FftFirstRadix;
    const Index inputs = ((count + 1) / 2 + sixteenth - 1) / sixteenth;
    float* const padded = GetArray(tables, 1).re; // free until the first pass is done
    for (Index i = 0; i < count; ++i) {
        padded[i] = samples[i] * window[i];
    }
    for (Index i = count; i < 2 * sixteenth * inputs; ++i) {
        padded[i] = 0.0F;
    }
    const PairSource source = {padded};
    const SplitArray target = GetArray(tables, 0);
    if (tables.half < FftFirstRadix * LevelLanes) {
        RunFirstPassOfFew<NarrowLanes>(source, inputs, target, tables.half, tables.first);
    } else {
        RunFirstPassOfFew<LevelLanes>(source, inputs, target, tables.half, tables.first);
    }
    return RunLastPass(tables, RunMiddlePasses(tables));
}

template <typename Source>
void RunForward(const FftTables& tables, Source source, float* spectrum) noexcept
{
    const SplitArray halves = TransformPairs(tables, source);
    const PairTarget target = {spectrum};
    Separate(halves, tables, 0, tables.half / 2, target, target);
    SeparateMiddle(halves, tables, target);
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

void ForwardOfProductWithPower(const FftTables& tables,
                               const float* samples,
                               const float* window,
                               std::ptrdiff_t binCount,
                               float* spectrum,
                               float* power) noexcept
{
    const SplitArray halves = TransformPairs(tables, WindowedPairSource{samples, window});
    const LowBinTarget target = {{spectrum}, binCount, {power}};
    const Index middle = tables.half / 2;
    if (binCount > middle) {
        Separate(halves, tables, 0, middle, target, target);
    } else {
        const Index low = (binCount + LevelLanes - 1) / LevelLanes * LevelLanes;
        Separate(halves, tables, 0, low, target, target.all);
        Separate(halves, tables, low, middle, target.all, target.all);
    }
    SeparateMiddle(halves, tables, target);
}

void PowerOfPaddedProduct(const FftTables& tables,
                          const float* samples,
                          const float* window,
                          std::ptrdiff_t count,
                          std::ptrdiff_t binCount,
                          float* power) noexcept
{
    const SplitArray halves = TransformPaddedProduct(tables, samples, window, count);
    const PowerTarget target = {power};
    const Index middle = tables.half / 2;
    if (binCount > middle) {
        Separate(halves, tables, 0, middle, target, target);
        SeparateMiddle(halves, tables, target);
    } else {
        const Index end = (binCount + LevelLanes - 1) / LevelLanes * LevelLanes;
        Separate(halves, tables, 0, end, target, NoTarget{});
    }
}

/// The inverse transform of what was joined to array 1, which the first pass reads and frees.
void InvertJoined(const FftTables& tables, float* samples) noexcept
{
    const Passed passed = RunAllButLastStep(tables, GetArray(tables, 1));
    RunLastStep(passed, ExchangedPairTarget{samples}, tables.half);
}

void Inverse(const FftTables& tables, const float* spectrum, float* samples) noexcept
{
    JoinAllExchanged(spectrum, tables, GetArray(tables, 1));
    InvertJoined(tables, samples);
}

void InverseOfLowBins(const FftTables& tables,
                      const float* spectrum,
                      std::ptrdiff_t binCount,
                      float* samples) noexcept
{
    const bool isLow = binCount <= tables.half / 2;
    const Index end =
        isLow ? (binCount + LevelLanes - 1) / LevelLanes * LevelLanes : tables.half + 1;
    float* const padded = GetArray(tables, 0).re; // nothing else is there before the first pass
    __builtin_memcpy(padded, spectrum, static_cast<std::size_t>(2 * binCount) * sizeof(float));
    for (Index i = 2 * binCount; i < 2 * end; ++i) {
        padded[i] = 0.0F;
    }
    if (isLow) {
        JoinLowExchanged(padded, tables, end, GetArray(tables, 1));
    } else {
        JoinAllExchanged(padded, tables, GetArray(tables, 1));
    }
    InvertJoined(tables, samples);
}

} // namespace

constinit const FftKernels Ffts = {
    .forward = Forward,
    .forwardOfProduct = ForwardOfProduct,
    .forwardOfProductWithPower = ForwardOfProductWithPower,
    .powerOfPaddedProduct = PowerOfPaddedProduct,
    .inverse = Inverse,
    .inverseOfLowBins = InverseOfLowBins,
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
