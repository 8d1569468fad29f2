// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/HalfBand.h"

#include "frameworks/plugincore/dsp/kernels/LevelSets.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

void Decimate(const float* coefficients,
              std::size_t pairs,
              const float* even,
              const float* odd,
              float* target,
              std::size_t count) noexcept
{
    ForEachVector(count, [=](std::size_t m, auto lanes) {
        constexpr int N = decltype(lanes)::Value;
        const float* const behind = odd + m + pairs;
        const float* before = behind;
        Vector<float, N> sum = Load<N>(even + m) * 0.5F;
        for (std::size_t i = 0; i < pairs; ++i) {
            --before;
            sum = sum + (Load<N>(before) + Load<N>(behind + i)) * Broadcast<N>(coefficients[i]);
        }
        Store(target + m, sum);
    });
}

} // namespace

constinit const HalfBandKernels HalfBands = {
    .decimate = Decimate,
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
