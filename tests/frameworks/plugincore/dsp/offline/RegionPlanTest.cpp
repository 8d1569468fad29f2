// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/offline/RegionPlan.h"
#include "frameworks/plugincore/dsp/offline/RegionFade.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using DSP::Region;
using DSP::RegionBox;

constexpr DSP::RegionPlanSetup Recording{10'000, 1000, 10}; // a fade is 10 frames

std::vector<float> GainsOf(const Region& region, int64_t position, std::size_t count)
{
    std::vector<float> gains(count);
    DSP::RegionFade(region).Fill(position, gains);
    return gains;
}

TEST(RegionPlan, BoxesThatOverlapOrTouchAreOneAndOthersComeInOrder)
{
    // The fades of the first two meet; the next two touch without a dip; the last is by itself.
    const auto regions = DSP::PlanRegions(
        {{600, 700}, {100, 200}, {205, 300}, {700, 800}, {9'000, 20'000}}, Recording);
    ASSERT_EQ(regions.size(), 3U);
    EXPECT_EQ(regions[0].GetFirst(), 95);
    EXPECT_EQ(regions[0].GetEnd(), 305);
    EXPECT_EQ(regions[0].GetParts().size(), 2U);
    EXPECT_EQ(regions[1].GetParts().size(), 1U);
    EXPECT_EQ(GainsOf(regions[1], 605, 190), std::vector<float>(190, 1.0F));
    // Half outside, half inside; nothing beyond the recording, where there is no fade either.
    EXPECT_EQ(regions[2].GetFirst(), 8'995);
    EXPECT_EQ(regions[2].GetEnd(), 10'000);
    const std::vector<float> gains = GainsOf(regions[2], 8'990, 1'010);
    EXPECT_EQ(gains[4], 0.0F);
    EXPECT_GT(gains[5], 0.0F);
    EXPECT_NEAR(gains[9] + gains[10], 1.0F, 1e-6F); // at both sides of the edge
    EXPECT_EQ(gains[15], 1.0F);
    EXPECT_EQ(gains.back(), 1.0F);
}

TEST(RegionPlan, FadesAreRoundedHalfAwayFromZeroAndAtMostHalfTheRegion)
{
    EXPECT_EQ(DSP::GetFadeFrames(10, 44'150, 100'000), 442); // 441.5
    EXPECT_EQ(DSP::GetFadeFrames(10, 44'100, 801), 400);
    EXPECT_EQ(DSP::GetFadeFrames(10, 44'100, 1), 0);
    const auto one = DSP::PlanRegions({{500, 501}}, Recording);
    ASSERT_EQ(one.size(), 1U);
    EXPECT_EQ(GainsOf(one[0], 499, 3), (std::vector<float>{0, 1, 0}));
}

TEST(RegionPlan, BandsMakeNarrowTransformsLongWithinTheirBounds)
{
    const auto select = [](double low, double high) {
        return Region(std::vector<Region::Part>{{{0, 100, low, high}}}).GetSelectivity(48'000);
    };
    EXPECT_EQ(select(1000, 1001), 2);
    EXPECT_EQ(select(0, RegionBox::NoUpperBound), 0.001);
    EXPECT_LT(select(0, 500), select(0, 150));
    EXPECT_DOUBLE_EQ(select(0, 150), select(150, 300));
    // A bound at half the rate is none, and half a fade is a whole number of quarter hops.
    const auto regions =
        DSP::PlanRegions({{2'000, 4'000, 100, 500}, {6'000, 8'000, 0, 100}}, Recording);
    EXPECT_EQ(regions[0].GetHighHz(), RegionBox::NoUpperBound);
    EXPECT_EQ((6'000 - regions[1].GetFirst()) % 4, 0); // of 128 frames: 0.7 s of 0.12
    EXPECT_GE(6'000 - regions[1].GetFirst(), 5);
    EXPECT_TRUE(regions[1].IsBounded());
}

} // namespace
