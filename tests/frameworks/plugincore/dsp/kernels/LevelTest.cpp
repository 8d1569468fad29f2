// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "tests/frameworks/plugincore/dsp/kernels/Levels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <set>

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

TEST(Level, EveryLevelHasKernelsOfItsOwn)
{
    std::set<const void*> sets;
    std::set<const void*> families;
    for (const Level level : Support::GetSupportedLevels()) {
        const KernelSet& kernels = GetKernels(level);
        EXPECT_TRUE(sets.insert(&kernels).second) << static_cast<int>(level);
        for (const void* const family : std::initializer_list<const void*>{
                 &kernels.correlation, &kernels.fft, &kernels.lagSearch, &kernels.overlap}) {
            EXPECT_TRUE(families.insert(family).second) << static_cast<int>(level);
        }
    }
    EXPECT_EQ(&GetKernels(), &GetKernels(ChooseLevel(std::getenv("PUFFGUARD_CPU"))));
}
