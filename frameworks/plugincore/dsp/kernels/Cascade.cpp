// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/Cascade.h"

#include "frameworks/plugincore/dsp/kernels/LevelSets.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

// A section a lane, on every level.
constexpr int L = 4;
using V = Vector<float, L>;
using Ints = Vector<int, L>;

/// How many samples a section lags behind the one before it. Two steps are time enough for that
/// one's output to get there: then a section waits for nothing but its own last output.
constexpr int Lag = 2;
constexpr int Last = Cascade::SectionCount - 1;
constexpr std::ptrdiff_t Skew = std::ptrdiff_t{Lag} * Last;

V LoadAll(const Cascade::Values& values) noexcept
{
    V lanes;
    __builtin_memcpy(&lanes, &values, sizeof lanes);
    return lanes;
}

void StoreAll(Cascade::Values& values, const V& lanes) noexcept
{
    __builtin_memcpy(&values, &lanes, sizeof lanes);
}

/// The sections side by side: in step k section s is at sample k - Lag s.
struct Sections {
    explicit Sections(const Cascade& cascade) noexcept
        : b0(LoadAll(cascade.b0))
        , b1(LoadAll(cascade.b1))
        , b2(LoadAll(cascade.b2))
        , a1(LoadAll(cascade.a1))
        , a2(LoadAll(cascade.a2))
        , offset(LoadAll(cascade.offset))
        , first(LoadAll(cascade.first))
        , second(LoadAll(cascade.second))
    {
    }

    void Step(float sample) noexcept
    {
        V x = __builtin_shufflevector(formerOutputs, formerOutputs, 0, 0, 1, 2);
        x[0] = sample;
        x += offset;
        formerOutputs = outputs;
        outputs = b0 * x + first;
        first = b1 * x - a1 * outputs + second;
        second = b2 * x - a2 * outputs;
    }

    /// Step k of a call, in which sections that have no sample of the call keep their state.
    void StepAtEdge(const float* samples, std::ptrdiff_t k, std::ptrdiff_t count) noexcept
    {
        constexpr Ints Section{0, 1, 2, 3};
        const V formerFirst = first;
        const V formerSecond = second;
        Step(k < count ? samples[k] : 0.0F);
        const Ints at = static_cast<int>(k) - Lag * Section;
        const Ints takesPart = (at >= 0) & (at < static_cast<int>(count));
        first = takesPart ? first : formerFirst;
        second = takesPart ? second : formerSecond;
    }

    V b0;
    V b1;
    V b2;
    V a1;
    V a2;
    V offset;
    V first;
    V second;
    V outputs{}; ///< of the last step
    V formerOutputs{};
};

void Run(Cascade& cascade, const float* samples, float* outputs, std::ptrdiff_t count) noexcept
{
    Sections sections(cascade);
    std::ptrdiff_t k = 0;
    for (; k < Skew; ++k) {
        sections.StepAtEdge(samples, k, count);
    }
    for (; k < count; ++k) {
        sections.Step(samples[k]);
        outputs[k - Skew] = sections.outputs[Last];
    }
    for (; k < count + Skew; ++k) {
        sections.StepAtEdge(samples, k, count);
        outputs[k - Skew] = sections.outputs[Last];
    }
    StoreAll(cascade.first, sections.first);
    StoreAll(cascade.second, sections.second);
}

} // namespace

constinit const CascadeKernels Cascades = {.run = Run};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
