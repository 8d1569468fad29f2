// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "tests/frameworks/plugincore/dsp/kernels/Levels.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace DSP::Kernels;

TEST(Level, NameIsALimitAndNeverMoreThanTheProcessorHas)
{
    const Level best = *std::max_element(AllLevels.begin(), AllLevels.end(), [](Level a, Level b) {
        return IsSupported(a) < IsSupported(b) || (IsSupported(b) && a < b);
    });
    EXPECT_EQ(ChooseLevel(nullptr), best);
    EXPECT_EQ(ChooseLevel(""), best);
    EXPECT_EQ(ChooseLevel("AVX9"), best);
    EXPECT_EQ(ChooseLevel("v4"), best);
    EXPECT_EQ(ChooseLevel("v3"), std::min(best, Level::V3));
    EXPECT_EQ(ChooseLevel("baseline"), Level::Baseline);
}
