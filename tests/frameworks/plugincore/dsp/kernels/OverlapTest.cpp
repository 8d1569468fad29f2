// SPDX-License-Identifier: ISC
#include "tests/frameworks/plugincore/dsp/kernels/Levels.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

using namespace DSP::Kernels;
using Support::MakeNoise;

// Every length around the vectors' and every misalignment, against the plain loop.
TEST(Overlap, EveryLevelDoesWhatThePlainLoopDoes)
{
    constexpr std::size_t Most = 70;
    const std::vector<float> a = MakeNoise(Most + 16, 1);
    const std::vector<float> b = MakeNoise(Most + 16, 2);
    const std::vector<float> old = MakeNoise(Most + 16, 3);
    for (const Level level : Support::GetSupportedLevels()) {
        const OverlapKernels& kernels = GetKernels(level).overlap;
        for (std::size_t count = 0; count <= Most; ++count) {
            const std::size_t offset = count % 16;
            std::vector<float> products = old;
            std::vector<float> sums = old;
            kernels.multiply(a.data() + offset, b.data(), products.data() + 1, count);
            kernels.multiplyAdd(a.data(), b.data() + offset, sums.data() + offset, count);

            std::vector<float> expectedProducts = old;
            std::vector<float> expectedSums = old;
            for (std::size_t i = 0; i < count; ++i) {
                expectedProducts[1 + i] = a[offset + i] * b[i];
                expectedSums[offset + i] += a[i] * b[offset + i];
            }
            EXPECT_EQ(products, expectedProducts) << static_cast<int>(level) << ", " << count;
            EXPECT_EQ(sums, expectedSums) << static_cast<int>(level) << ", " << count;
        }
    }
}
