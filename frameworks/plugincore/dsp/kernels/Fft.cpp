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

/// The same, whose samples are added to sums, each times that of a window.
struct ExchangedSumTarget {
    const float* window;
    float* sums;

    template <int N>
    [[gnu::always_inline]] void Put(Index index, const ComplexVector<N>& value) const noexcept
    {
        const PairVectors<N> samples = Zip<N>(Exchange(value));
        Add<N>(2 * index, samples.lower);
        Add<N>(2 * index + N, samples.upper);
    }

    template <int N>
    [[gnu::always_inline]] void Add(Index index, const Vector<float, N>& samples) const noexcept
    {
        Store(sums + index, Load<N>(sums + index) + samples * Load<N>(window + index));
    }
};

SplitArray GetArray(const FftTables& tables, Index number) noexcept
{
    const Index part = tables.half + FftPadding;
    float* const start = tables.work + 2 * part * number;
    return {start, start + part};
}

/// What some of the passes leave: `from` is what the next one reads, `free` may be written.
struct Passed {
    SplitArray from;
    SplitArray free;
    Index length;         // of the transforms that are left to do
    const float* factors; // of the next pass
};

Passed GetPassedFirst(const FftTables& tables) noexcept
{
    return {GetArray(tables, 0), GetArray(tables, 1), tables.half / FftFirstRadix, tables.middle};
}

/// Whether what is left is the last step: a pass of radix 4 or 8, or two passes in one.
bool IsLastStep(const Passed& passed) noexcept
{
    return passed.length <= 16;
}

/// One walk through memory in the middle: two passes, unless one is all that is left there.
void RunMiddleStep(const Passed& passed, Index half) noexcept
{
    const Index stride = half / passed.length;
    if (passed.length > 32) {
        RunTwoPasses<LevelLanes, false>(passed.from,
                                        passed.free,
                                        passed.length,
                                        stride,
                                        passed.factors,
                                        passed.factors + passed.length / 4 * 6);
    } else {
        RunMiddlePass<LevelLanes>(passed.from, passed.free, passed.length, stride, passed.factors);
    }
}

Passed GetPassedMiddleStep(const Passed& passed) noexcept
{
    const float* const next = passed.factors + passed.length / 4 * 6;
    if (passed.length > 32) {
        return {passed.free, passed.from, passed.length / 16, next + passed.length / 16 * 6};
    }
    return {passed.free, passed.from, passed.length / 4, next};
}

/// What there is before the last step.
Passed GetPassedMiddle(const FftTables& tables) noexcept
{
    Passed passed = GetPassedFirst(tables);
    while (!IsLastStep(passed)) {
        passed = GetPassedMiddleStep(passed);
    }
    return passed;
}

template <typename Source>
void RunFirstStep(const FftTables& tables, Source source) noexcept
{
    if (tables.half < FftFirstRadix * LevelLanes) {
        RunFirstPass<NarrowLanes>(source, GetArray(tables, 0), tables.half, tables.first);
    } else {
        RunFirstPass<LevelLanes>(source, GetArray(tables, 0), tables.half, tables.first);
    }
}

void RunMiddle(const FftTables& tables) noexcept
{
    for (Passed passed = GetPassedFirst(tables); !IsLastStep(passed);
         passed = GetPassedMiddleStep(passed)) {
        RunMiddleStep(passed, tables.half);
    }
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
SplitArray RunLastPass(const FftTables& tables) noexcept
{
    const Passed passed = GetPassedMiddle(tables);
    RunLastStep(passed, passed.free, tables.half);
    CloseCircle(passed.free, tables.half);
    return passed.free;
}

/// The transform of `count` products, at most a quarter of what it takes, and zeros.
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
    RunMiddle(tables);
    return RunLastPass(tables);
}

template <typename Source>
void RunForward(const FftTables& tables, Source source, float* spectrum) noexcept
{
    RunFirstStep(tables, source);
    RunMiddle(tables);
    const SplitArray halves = RunLastPass(tables);
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

void FirstPartOfProduct(const FftTables& tables, const float* samples, const float* window) noexcept
{
    RunFirstStep(tables, WindowedPairSource{samples, window});
}

void LastPartWithPower(const FftTables& tables,
                       std::ptrdiff_t binCount,
                       float* spectrum,
                       float* power) noexcept
{
    const SplitArray halves = RunLastPass(tables);
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

/// The first pass of the inverse transform of what was joined to array 1, which that frees.
void RunFirstStepOfJoined(const FftTables& tables) noexcept
{
    RunFirstStep(tables, GetArray(tables, 1));
}

void AddLastPartOfInverse(const FftTables& tables, const float* window, float* sums) noexcept
{
    RunLastStep(GetPassedMiddle(tables), ExchangedSumTarget{window, sums}, tables.half);
}

void Inverse(const FftTables& tables, const float* spectrum, float* samples) noexcept
{
    JoinAllExchanged(spectrum, tables, GetArray(tables, 1));
    RunFirstStepOfJoined(tables);
    RunMiddle(tables);
    RunLastStep(GetPassedMiddle(tables), ExchangedPairTarget{samples}, tables.half);
}

void FirstPartOfLowBins(const FftTables& tables,
                        const float* spectrum,
                        std::ptrdiff_t binCount) noexcept
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
    RunFirstStepOfJoined(tables);
}

} // namespace

constinit const FftKernels Ffts = {
    .forward = Forward,
    .forwardOfProduct = ForwardOfProduct,
    .firstPartOfProduct = FirstPartOfProduct,
    .middlePart = RunMiddle,
    .lastPartWithPower = LastPartWithPower,
    .powerOfPaddedProduct = PowerOfPaddedProduct,
    .inverse = Inverse,
    .firstPartOfLowBins = FirstPartOfLowBins,
    .addLastPartOfInverse = AddLastPartOfInverse,
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
