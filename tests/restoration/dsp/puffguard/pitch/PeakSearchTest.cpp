// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PeakSearch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

namespace Pitch = DSP::Synapse;

std::vector<float> MakeNoise(std::size_t count, unsigned seed)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> level(0, 1);
    std::vector<float> noise(count);
    std::generate(noise.begin(), noise.end(), [&] { return level(random); });
    return noise;
}

TEST(PeakSearch, FirstOfTheLargestWins)
{
    for (int count = 1; count < 40; ++count) {
        std::vector<float> values = MakeNoise(static_cast<std::size_t>(count) + 3, 5);
        const auto begin = values.begin() + 2;
        const auto largest = std::max_element(begin, begin + count);
        values.front() = 2; // outside the range
        values.back() = 2;
        EXPECT_EQ(Pitch::FindFirstLargest(values, 2, count + 1), largest - values.begin());
        *largest = 1; // twice the same
        *begin = 1;
        EXPECT_EQ(Pitch::FindFirstLargest(values, 2, count + 1), 2);
    }
}

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

TEST(PeakSearch, ErasingEndsWhereValuesRiseAgain)
{
    //                          0  1  2  3  4  5  6  7  8  9 10 11 12 13 14 15 16
    std::vector<float> values{9, 3, 2, 3, 4, 1, 5, 9, 5, 6, 4, 3, 2, 2, 1, 4, 5};
    Pitch::ErasePeak(values, 7, 15);
    // Down: 7..3 anyway, 2 (not above 3), then 1 is above 2. Up: 7..11 anyway, 12, 13 (equal is no
    // rise), 14, then 15 is above 14.
    const std::vector<float> expected{9, 3, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 4, 5};
    EXPECT_EQ(values, expected);
}

TEST(PeakSearch, ErasingTakesFiveValuesAnyway)
{
    // All values rise away from the centre: the five that go anyway are the centre and four more.
    std::vector<float> valley{6, 5, 4, 3, 2, 1, 0.5F, 1, 2, 3, 4, 5, 6};
    Pitch::ErasePeak(valley, 6, 12);
    EXPECT_EQ(valley, (std::vector<float>{6, 5, 0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 6}));
}

TEST(PeakSearch, ErasingStopsAtBothEnds)
{
    std::vector<float> falling{1, 2, 3, 4, 5, 6, 7, 6, 5, 4, 3, 2, 1};
    Pitch::ErasePeak(falling, 6, 11);
    const std::vector<float> expected{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1};
    EXPECT_EQ(falling, expected);
    std::vector<float> narrow{1, 5, 1, 0};
    Pitch::ErasePeak(narrow, 1, 2);
    EXPECT_EQ(narrow, std::vector<float>(4, 0.0F));
}

} // namespace
