// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/LevelSets.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

void Multiply(const float* a, const float* b, float* target, std::size_t count) noexcept
{
    ForEachVector(count, [=](std::size_t i, auto lanes) {
        constexpr int N = decltype(lanes)::Value;
        Store(target + i, Load<N>(a + i) * Load<N>(b + i));
    });
}

void MultiplyAdd(const float* a, const float* b, float* target, std::size_t count) noexcept
{
    ForEachVector(count, [=](std::size_t i, auto lanes) {
        constexpr int N = decltype(lanes)::Value;
        Store(target + i, Load<N>(target + i) + Load<N>(a + i) * Load<N>(b + i));
    });
}

} // namespace

constinit const OverlapKernels Overlaps = {
    .multiply = Multiply,
    .multiplyAdd = MultiplyAdd,
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
