// SPDX-License-Identifier: ISC
// Expected values are worked by hand; the working stands beside them.
#include "restoration/dsp/puffguard/PlosiveDetection.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <limits>
#include <vector>

namespace {

constexpr float Infinity = std::numeric_limits<float>::infinity();

std::array<int32_t, 4> GetBands(int32_t fftSize, float rate)
{
    const DSP::DetectionBands bands = DSP::MakeDetectionBands(fftSize, rate);
    return {bands.lowStart, bands.lowEnd, bands.referenceStart, bands.referenceEnd};
}

TEST(DetectionBands, LieAtTheNearestBins)
{
    // F * f / rate for 20, 70, 200, 400 Hz: 1.86 6.502 18.6 37.2; 1.71 5.97 17.07 34.1;
    // 2.56 8.96 25.6 51.2.
    EXPECT_EQ(GetBands(4096, 44100), (std::array<int32_t, 4>{2, 7, 19, 37}));
    EXPECT_EQ(GetBands(4096, 48000), (std::array<int32_t, 4>{2, 6, 17, 34}));
    EXPECT_EQ(GetBands(2048, 16000), (std::array<int32_t, 4>{3, 9, 26, 51}));
}

TEST(DetectionBands, StayWithinTheSpectrumAtAnyRate)
{
    for (const float rate : {1e-3F, 1.0F, 30.0F, 100.0F, 400.0F, 800.0F}) {
        for (const int32_t size : {8, 64}) {
            const std::array<int32_t, 4> bands = GetBands(size, rate);
            EXPECT_GE(bands[0], 0) << rate;
            EXPECT_LT(bands[0], bands[1]) << rate;
            EXPECT_LE(bands[1], size / 2 + 1) << rate;
            EXPECT_LE(bands[2], bands[3]) << rate;
            EXPECT_LE(bands[3], size / 2 + 1) << rate;
        }
    }
}

class DetectFrameTest : public testing::Test {
protected:
    // n = 2 bins of 3 and 5 (S = 8) over floors of 1 and 0.5 (Z = 1.5, W = 3 / 1 + 5 / 0.5 = 13):
    // ((1.5 / 2 * 13 - 8) * 0.5 + 8) = 8.875, times the tilt's weight.
    const DSP::DetectionBands bands{2, 4, 5, 7};
    std::vector<float> floors{9, 9, 1.0F, 0.5F, 9, 9, 9, 9};

    DSP::FrameDetection Detect(float referencePerBin) const
    {
        const std::vector<float> power{99, 99, 3, 5, 99, referencePerBin, referencePerBin, 99};
        return DSP::DetectFrame(power.data(), floors.data(), bands);
    }
};

TEST_F(DetectFrameTest, ValueIsTheWhitenedSumTimesTheTilt)
{
    const DSP::FrameDetection frame = Detect(1.0F); // q = 8 / 2 = 4, t = 3 / 5: 6 + 0.7
    EXPECT_NEAR(frame.value, 8.875F * 6.7F, 1e-4F);
    EXPECT_EQ(frame.noise, 1.5F);
    EXPECT_NEAR(Detect(4.0F).value, 8.875F * 0.7F, 1e-5F);       // q = 1
    EXPECT_NEAR(Detect(40.0F).value, 8.875F * 0.7F, 1e-5F);      // below 1
    EXPECT_NEAR(Detect(8.0F / 12).value, 8.875F * 10.7F, 1e-4F); // q = 6
    EXPECT_NEAR(Detect(0.0F).value, 8.875F * 10.7F, 1e-4F);      // nothing to compare with
    const std::vector<float> nothing(8, 0.0F);
    const DSP::FrameDetection silent = DSP::DetectFrame(nothing.data(), nothing.data(), bands);
    EXPECT_EQ(silent.value, 0.0F);
    EXPECT_EQ(silent.noise, 0.0F);
}

TEST(DetectionThreshold, FallsWithTheSquareOfTheSensitivity)
{
    EXPECT_FLOAT_EQ(DSP::GetDetectionThreshold(1.0F, 10.0F), 40.96F);
    EXPECT_FLOAT_EQ(DSP::GetDetectionThreshold(1.0F, 5.0F), 163.84F);
    EXPECT_FLOAT_EQ(DSP::GetDetectionThreshold(0.5F, 1.0F), 2048.0F);
    EXPECT_EQ(DSP::GetDetectionThreshold(1.0F, 0.0F), Infinity);
    EXPECT_TRUE(std::isnan(DSP::GetDetectionThreshold(0.0F, 0.0F)));
}

TEST(Severity, RisesFromTheThresholdTo25Times)
{
    EXPECT_EQ(DSP::GetSeverity(2.0F, 2.0F), 0.0F);
    EXPECT_NEAR(DSP::GetSeverity(26.0F, 2.0F), 0.5F, 1e-6F); // 13 times: 12 / 24
    EXPECT_EQ(DSP::GetSeverity(51.0F, 2.0F), 1.0F);
    EXPECT_EQ(DSP::GetSeverity(1.0F, 0.0F), 1.0F);
}

// A history of 13 frames with the centre at 6 and 3 frames on each side in the peak window, 3 to 9.
constexpr int32_t Centre = 6;
constexpr int32_t Radius = 3;

std::vector<float> MakeHistory(std::array<float, 7> window, float outside = 0)
{
    std::vector<float> history(13, outside);
    std::copy(window.begin(), window.end(), history.begin() + 3);
    return history;
}

DSP::PeakTest TestMiddle(const std::vector<float>& history, float threshold)
{
    return DSP::TestPeak(history, Centre, Radius, threshold);
}

TEST(PeakTest, IsTheLargestOfItsWindowOrALocalOneWhileTheLevelStays)
{
    const std::tuple<std::array<float, 7>, float, bool> rows[] = {
        {{1, 4, 30, 100, 50, 2, 3}, 99, true},
        {{1, 4, 30, 100, 50, 2, 3}, 100, false},    // strictly above
        {{0, 50, 50, 50, 50, 50, 0}, 10, true},     // every frame of a plateau is one
        {{101, 0, 0, 100, 0, 0, 0}, 10, false},     // the ends of the window belong to it
        {{0, 0, 0, 100, 100, 0, 101}, 10, false},   // and no local peak
        {{120, 9, 100, 100, 99, 9, 20}, 10, true},  // local; 20 three frames later is above 10
        {{120, 9, 100, 100, 99, 9, 10}, 10, false}, // not above
        {{120, 9, 101, 100, 99, 9, 20}, 10, false}, // still rising back
        {{120, 9, 99, 100, 100, 9, 20}, 10, false}, // equal to the right
        {{1, 1, 1, 100, 1, 1, 1}, Infinity, false}, // thresholds that are no numbers
        {{1, 1, 1, 100, 1, 1, 1}, std::nanf(""), false},
        {{0, 0, 0, 0, 0, 0, 0}, 0, false}, // silence
    };
    for (const auto& [window, threshold, isPeak] : rows) {
        EXPECT_EQ(TestMiddle(MakeHistory(window), threshold).isPeak, isPeak)
            << testing::PrintToString(window) << " " << threshold;
    }
    // What lies outside the window doesn't count.
    const DSP::PeakTest test = TestMiddle(MakeHistory({1, 4, 30, 100, 50, 2, 3}, 1000), 99);
    EXPECT_TRUE(test.isPeak);
    EXPECT_FALSE(test.isSustained);
    EXPECT_EQ(test.centre, 100.0F);
    EXPECT_EQ(test.maximum, 100.0F);
    EXPECT_TRUE(TestMiddle(MakeHistory({120, 9, 100, 100, 99, 9, 20}), 10).isSustained);
}

// Level: fourth root of 100 * 1 = 3.16, 100 being the peak and 1 the noise.
TEST(RepairRegion, ReachesFromFootToFoot)
{
    const std::tuple<std::array<float, 7>, float, std::array<int32_t, 2>> rows[] = {
        // Left: 3 holds 1, 4 holds 4, which exceeds it; down to its foot at 3. Right: 9 and 8 don't
        // exceed it, so from 7 down: 8, where 3 behind it rises.
        {{1, 4, 30, 100, 50, 2, 3}, 99, {3, 8}},
        // Left: 3 holds 9, above 3.16, and is the far end itself. Right: 9 holds 1; 8 holds 5,
        // above; down to 9.
        {{9, 1, 30, 100, 2, 5, 1}, 99, {3, 9}},
        // Nothing above the level beside the peak: the walk ends beside it and slides outwards.
        {{3, 2, 1, 100, 1, 1, 3}, 99, {5, 8}},
        // Sustained, as 3 at index 9 is above 2: the first lowest of 50 and 2 is number 1, so the
        // far end is 6 + 1.
        {{1, 4, 30, 100, 50, 2, 3}, 2, {3, 7}},
        // The lowest is the very next frame, number 0: the region ends at the peak, above the
        // level.
        {{1, 4, 30, 100, 2, 50, 3}, 2, {3, 6}},
    };
    for (const auto& [window, threshold, expected] : rows) {
        const std::vector<float> history = MakeHistory(window);
        const DSP::PeakTest peak = TestMiddle(history, threshold);
        const DSP::RepairRegion region = DSP::FindRepairRegion(history, Centre, Radius, peak, 1);
        EXPECT_EQ((std::array<int32_t, 2>{region.start, region.end}), expected)
            << testing::PrintToString(window) << " " << threshold;
    }
    // A radius of two leaves one frame to search: the region ends at the peak, too.
    const std::vector<float> narrow{0, 0, 0, 4, 30, 100, 50, 20, 0, 0, 0};
    const DSP::PeakTest peak = DSP::TestPeak(narrow, 5, 2, 10);
    ASSERT_TRUE(peak.isSustained);
    EXPECT_EQ(DSP::FindRepairRegion(narrow, 5, 2, peak, 1).end, 5);
}

TEST(RepairRegion, WalkStopsAtTheOldestFrame)
{
    // Noise 1000 puts the level to the fourth root of 100e9 = 562, above everything: from the peak
    // the walk goes down to 0, and the rise to 1 keeps it there.
    std::vector<float> history = MakeHistory({1, 4, 30, 100, 2, 50, 3});
    history[0] = 0.5F;
    history[1] = 0.7F;
    const DSP::PeakTest peak = TestMiddle(history, 2);
    ASSERT_TRUE(peak.isSustained);
    const DSP::RepairRegion region = DSP::FindRepairRegion(history, Centre, Radius, peak, 1000);
    EXPECT_EQ(region.end, 0);
    EXPECT_TRUE(region.IsEmpty());
    EXPECT_FALSE((DSP::RepairRegion{4, 4}.IsEmpty()));
}

} // namespace
