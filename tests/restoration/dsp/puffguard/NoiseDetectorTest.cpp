// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/NoiseDetector.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

constexpr float Rate = 44100;
constexpr uint32_t Hop = 512;
constexpr float Floor = 1e-6F;
constexpr int FramesOfTwoSeconds = 172; // 44100 * 2 / 512 = 172.3
constexpr int StartUp = 5;              // half length 44100 * 0.01 / 512 = 0.9, but at least 2

class NoiseDetectorTest : public testing::Test {
protected:
    NoiseDetectorTest() { detector.configure(1, Rate, Hop, Floor); }

    float Process(float power)
    {
        float out = -1;
        detector.process(&power, &out);
        return out;
    }

    float Run(float power, int frames)
    {
        float out = 0;
        for (int i = 0; i < frames; ++i) {
            out = Process(power);
        }
        return out;
    }

    DSP::NoiseDetector detector;
};

TEST_F(NoiseDetectorTest, SilenceFromTheStartPassesAndTeachesNothing)
{
    // Below count * floor and 16 * floor; a thousand such frames leave the start-up ahead.
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(Process(0.5F * Floor), 0.5F * Floor);
    }
    for (int i = 0; i < StartUp; ++i) {
        ASSERT_EQ(Process(4.0F), 2.0F) << i; // half of the input while the average fills
    }
    EXPECT_NE(Process(4.0F), 2.0F);
}

TEST_F(NoiseDetectorTest, SignalInOneBinOpensTheGate)
{
    // 99 silent bins and one at 20 times the floor: the sum, 20 * floor, is below 100 * floor, but
    // the largest is above 16 * floor.
    std::vector<float> power(100, 0.0F);
    std::vector<float> out(100);
    detector.configure(100, Rate, Hop, Floor);
    detector.process(power.data(), out.data());
    EXPECT_EQ(out[0], 0.0F);
    power[40] = 20 * Floor;
    detector.process(power.data(), out.data());
    EXPECT_EQ(out[40], 10 * Floor);
}

TEST_F(NoiseDetectorTest, FloorIsThatOfTheNoiseWhateverComesBetween)
{
    EXPECT_NEAR(Run(0.25F, 2 * FramesOfTwoSeconds), 0.25F, 1e-4F);
    Process(1000.0F); // one loud frame
    for (int i = 0; i < FramesOfTwoSeconds; ++i) {
        ASSERT_NEAR(Process(0.25F), 0.25F, 1e-3F);
    }
    EXPECT_NEAR(Run(0.0F, 3 * FramesOfTwoSeconds), 0.25F, 0.01F); // silence holds the average
}

TEST_F(NoiseDetectorTest, DropIsFollowedWithinAFewTenthsOfASecond)
{
    Run(1.0F, 2 * FramesOfTwoSeconds);
    // The minimum falls with the average (5 frames), then 0.1 s is the time constant: after 0.5 s,
    // 43 frames, at most exp(-38 / 8.6) = 1.2 % of the drop is left.
    EXPECT_NEAR(Run(0.1F, 43), 0.1F, 0.02F);
}

TEST_F(NoiseDetectorTest, RiseWaitsTwoSecondsAndTakesTen)
{
    Run(0.1F, 2 * FramesOfTwoSeconds);
    EXPECT_NEAR(Run(1.0F, FramesOfTwoSeconds - 1), 0.1F, 1e-3F);
    // From there on the time constant is 10 s, 861.3 frames; the average's own rise takes about two
    // and a half frames of it.
    EXPECT_NEAR(Run(1.0F, 20), 1.0 - 0.9 * std::exp(-17.5 / 861.3), 0.002);
    EXPECT_NEAR(Run(1.0F, 841), 1.0 - 0.9 * std::exp(-858.5 / 861.3), 0.005);
}

TEST(NoiseDetectorRange, BinsOfTheRangeAreThoseOfTheWholeSpectrum)
{
    constexpr uint32_t Bins = 64;
    DSP::NoiseDetector whole;
    DSP::NoiseDetector ranged;
    whole.configure(Bins, Rate, Hop, Floor);
    ranged.configure(Bins, Rate, Hop, Floor, {2, 7});
    std::mt19937 generator(1);
    std::exponential_distribution<float> distribution(10.0F);
    std::vector<float> all(Bins);
    std::vector<float> some(Bins, -1.0F);
    for (int frame = 0; frame < 500; ++frame) {
        std::vector<float> power(Bins);
        // The first signal lies outside the range and must start it all the same.
        std::generate(power.begin(), power.end(), [&] { return distribution(generator); });
        if (frame < 10) {
            std::fill(power.begin(), power.end(), 0.0F);
            power[50] = frame < 5 ? 0.0F : 1.0F;
        }
        whole.process(power.data(), all.data());
        ranged.process(power.data(), some.data());
        for (uint32_t bin = 0; bin < Bins; ++bin) {
            ASSERT_EQ(some[bin], bin >= 2 && bin < 7 ? all[bin] : -1.0F) << frame << " " << bin;
        }
    }
}

} // namespace
