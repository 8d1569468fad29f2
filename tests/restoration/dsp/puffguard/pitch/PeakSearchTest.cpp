// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PeakSearch.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

namespace Pitch = DSP::Synapse;

TEST(PeakSearch, ClimbsBothWaysWithinItsReach)
{
    //                            0  1  2  3  4  5  6  7  8  9 10 11 12 13
    const std::vector<float> hill{0, 1, 2, 3, 9, 8, 7, 6, 5, 4, 3, 2, 1, 0};
    EXPECT_EQ(Pitch::ClimbToPeak(hill, 7, 8, 12), 4);
    EXPECT_EQ(Pitch::ClimbToPeak(hill, 7, 2, 12), 5); // two lags away at most
    EXPECT_EQ(Pitch::ClimbToPeak(hill, 2, 8, 12), 4);
    EXPECT_EQ(Pitch::ClimbToPeak(hill, 2, 1, 12), 3);
    const std::vector<float> slope{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0};
    EXPECT_EQ(Pitch::ClimbToPeak(slope, 6, 20, 12), 10); // stops two short of the longest lag
}

TEST(PeakSearch, ParabolaGivesTheFractionOfALag)
{
    std::vector<float> values(22);
    for (std::size_t i = 0; i < values.size(); ++i) {
        const float off = static_cast<float>(i) - 10.3F;
        values[i] = 5.0F - off * off * 0.01F;
    }
    EXPECT_NEAR(Pitch::RefineLag(values, 10, 3), 10.3F, 1e-4F);
    EXPECT_NEAR(Pitch::RefineLag(values, 8, 3), 9.0F, 1e-4F); // one lag at most
    const std::vector<float> flat(22, 1.0F);
    EXPECT_EQ(Pitch::RefineLag(flat, 10, 3), 3.0F);
}

TEST(PeakSearch, ClarityRisesFromAHundredthToTheWhole)
{
    EXPECT_EQ(Pitch::GetClarity(0.5F, 1e-6F), 0.0F); // silence
    EXPECT_EQ(Pitch::GetClarity(0.02F, 2.0F), 0.0F);
    EXPECT_EQ(Pitch::GetClarity(2.1F, 2.0F), 1.0F);
    // (1.01 - 0.02) / (2 + 1e-6 - 0.02) = 0.5
    EXPECT_NEAR(Pitch::GetClarity(1.01F, 2.0F), 0.5F, 1e-6F);
}

} // namespace
