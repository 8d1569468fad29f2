// SPDX-License-Identifier: ISC
// The kernels of the automatic repair against plain loops: at every level the same bits.
#include "tests/frameworks/plugincore/dsp/kernels/Levels.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <vector>

using namespace DSP::Kernels;
using Support::MakeNoise;

TEST(Matrix, EveryLevelAddsTheProductsInOrder)
{
    constexpr std::size_t Inner = 7;
    constexpr std::size_t Distance = 99; // columns beyond those asked for stay as they are
    const std::vector<float> left = MakeNoise(5 * Distance, 1);
    const std::vector<float> right = MakeNoise(Inner * Distance, 2);
    const std::vector<float> old = MakeNoise(5 * Distance, 3);
    for (const std::size_t rows : {1U, 2U, 5U}) {
        for (const std::size_t columns : {16U, 64U, 96U}) {
            std::vector<float> expected = old;
            for (std::size_t i = 0; i < rows * columns * Inner; ++i) {
                const std::size_t row = i / Inner / columns;
                const std::size_t column = i / Inner % columns;
                expected[row * Distance + column] +=
                    left[row * Distance + i % Inner] * right[i % Inner * Distance + column];
            }
            for (const Level level : Support::GetSupportedLevels()) {
                std::vector<float> sums = old;
                GetKernels(level).matrix.multiplyAdd(
                    {rows, Inner, columns, left.data(), Distance, right.data(), Distance},
                    sums.data(),
                    Distance);
                EXPECT_EQ(sums, expected) << static_cast<int>(level) << ", " << columns;
            }
        }
    }
}

TEST(HalfBand, EveryLevelAddsFromTheMiddleOutwards)
{
    constexpr std::size_t Pairs = 5;
    constexpr std::size_t Count = 37;
    const std::vector<float> coefficients = MakeNoise(Pairs, 1);
    const std::vector<float> even = MakeNoise(Count, 2);
    const std::vector<float> odd = MakeNoise(Count + 2 * Pairs - 1, 3);
    std::vector<float> expected;
    for (std::size_t m = 0; m < Count; ++m) {
        expected.push_back(even[m] * 0.5F);
        for (std::size_t i = 0; i < Pairs; ++i) {
            expected.back() += coefficients[i] * (odd[m + Pairs - 1 - i] + odd[m + Pairs + i]);
        }
    }
    for (const Level level : Support::GetSupportedLevels()) {
        std::vector<float> output(Count);
        GetKernels(level).halfBand.decimate(
            coefficients.data(), Pairs, even.data(), odd.data(), output.data(), Count);
        EXPECT_EQ(output, expected) << static_cast<int>(level);
    }
}

TEST(Rank, EveryLevelFindsWhatSortingFinds)
{
    for (std::size_t count = 1; count < 70; ++count) {
        std::vector<float> values = MakeNoise(count, static_cast<unsigned>(count));
        values[count / 2] = values[0]; // two of a size
        std::vector<float> sorted = values;
        std::sort(sorted.begin(), sorted.end());
        values.resize(80);
        for (const Level level : Support::GetSupportedLevels()) {
            for (std::size_t rank = 0; rank < count; ++rank) {
                const RankedValues found =
                    GetKernels(level).rank.select(values.data(), count, rank);
                EXPECT_EQ(found.lower, sorted[rank]) << count << ", " << rank;
                EXPECT_EQ(found.upper, sorted[std::min(rank + 1, count - 1)]);
            }
        }
    }
}
