// SPDX-License-Identifier: ISC
// Expected values are worked by hand; the working stands beside them. With as many samples a frame
// as a second, bins are Hz.
#include "restoration/dsp/puffguard/PlosiveReduction.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace {

constexpr int32_t Size = 1000;
constexpr int32_t BinCount = Size / 2 + 1;

DSP::RepairSettings MakeSettings(int32_t edgeFrames)
{
    // g = 0.999 + 0.001 = 1: the target is the edge level itself.
    return {.fftSize = Size,
            .sampleRate = Size,
            .frequencyLimit = 200,
            .strengthTerm = 0.999F,
            .edgeFrames = edgeFrames};
}

int32_t CountBins(float limit, int32_t fftSize, float rate)
{
    DSP::RepairSettings settings;
    settings.frequencyLimit = limit;
    settings.fftSize = fftSize;
    settings.sampleRate = rate;
    return DSP::GetRepairedBinCount(settings);
}

TEST(RepairedBinCount, RoundsHalvesToEven)
{
    EXPECT_EQ(CountBins(200, 4096, 48000), 20);  // 20.48
    EXPECT_EQ(CountBins(62.5F, 1024, 30720), 2); // 75 * 1024 / 30720 = 2.5
    EXPECT_EQ(CountBins(87.5F, 1024, 30720), 4); // 105 * 1024 / 30720 = 3.5
    EXPECT_EQ(CountBins(0.001F, 4096, 48000), 0);
    EXPECT_EQ(CountBins(2000, 64, 100), 33); // the whole spectrum at most
}

TEST(RepairFade, OpensFromSevenTenthsOn)
{
    EXPECT_EQ(DSP::GetRepairFade(14, 20), 0.0F);
    EXPECT_NEAR(DSP::GetRepairFade(17, 20), 0.5F, 1e-6F);
    EXPECT_NEAR(DSP::GetRepairFade(19, 20), 5.0F / 6, 1e-6F);
    EXPECT_EQ(DSP::GetRepairFade(20, 20), 1.0F);
}

TEST(Protection, UnvoicedStartsBelow80Hz)
{
    for (const float pitchHz : {0.0F, 20.0F}) {
        const DSP::RepairPitch pitch = DSP::MakeRepairPitch(pitchHz, MakeSettings(1));
        EXPECT_FALSE(pitch.isVoiced);
        EXPECT_EQ(DSP::GetProtection(64, pitch), 0.0F);
        EXPECT_NEAR(DSP::GetProtection(68, pitch), 0.5F, 1e-5F);
        EXPECT_EQ(DSP::GetProtection(72, pitch), 1.0F);
        EXPECT_EQ(DSP::GetProtection(120, pitch), 1.0F); // no valley without a voice
    }
}

TEST(Protection, VoicedFallsBackBetweenTheHarmonics)
{
    const auto protect = [](int32_t bin) {
        // f0 at bin 100: rises from 80 to 90; around 150 within 20 bins 0.3, from 40 bins on 1.
        return DSP::GetProtection(bin, DSP::MakeRepairPitch(100, MakeSettings(1)));
    };
    const std::pair<int32_t, float> expected[] = {{80, 0.0F},
                                                  {85, 0.5F},
                                                  {90, 1.0F},
                                                  {150, 0.3F},
                                                  {129, 0.335F}, // 21 away: 0.05 * 0.7 + 0.3
                                                  {180, 0.65F},  // 30 away: 0.5 * 0.7 + 0.3
                                                  {190, 1.0F}};
    for (const auto& [bin, protection] : expected) {
        EXPECT_NEAR(protect(bin), protection, 1e-5F) << bin;
    }
    // f0 at bin 9: valley 13.5, bin 16 is 2.5 away, cut to whole bins, 2: 0.2 f0 = 1.8, 0.4 f0 =
    // 3.6, h = 0.2 / 1.8. Uncut it would be 0.7 / 1.8.
    const DSP::RepairPitch pitch{.pitchHz = 9, .isVoiced = true, .fundamentalBin = 9};
    EXPECT_NEAR(DSP::GetProtection(16, pitch), 0.2F / 1.8F * 0.7F + 0.3F, 1e-5F);
    EXPECT_NEAR(DSP::GetProtection(11, pitch), 0.2F / 1.8F * 0.7F + 0.3F, 1e-5F);
}

/// Frames of power with the same value in all bins until told otherwise.
class ReducePowerTest : public testing::Test {
protected:
    void MakeFrames(const std::vector<float>& levels)
    {
        for (const float level : levels) {
            frames.emplace_back(static_cast<std::size_t>(BinCount), level);
        }
        for (std::vector<float>& frame : frames) {
            pointers.push_back(frame.data());
        }
        pitches.assign(frames.size(), 0.0F);
    }

    void Reduce(DSP::RepairRegion region, float pitchHz, int32_t bins, int32_t edgeFrames)
    {
        const DSP::RepairSettings settings = MakeSettings(edgeFrames);
        DSP::ReducePower({.power = pointers, .pitch = pitches, .binCount = BinCount},
                         region,
                         DSP::MakeRepairPitch(pitchHz, settings),
                         bins,
                         settings);
    }

    std::vector<std::vector<float>> frames;
    std::vector<float*> pointers;
    std::vector<float> pitches;
};

TEST_F(ReducePowerTest, TargetLiesBetweenTheEdgeLevels)
{
    // Region 1 to 3 with one frame beside each edge: left (17 + 15) / 2 = 16, fourth root 2; right
    // (62 + 100) / 2 = 81, fourth root 3.
    MakeFrames({17, 15, 256, 100, 62});
    Reduce({1, 3}, 0, 200, 1);
    // Far below 80 Hz the target is the lower level, 2: 15 is below it, 256 and 100 become 16.
    EXPECT_EQ(frames[1][10], 15.0F);
    EXPECT_NEAR(frames[2][10], 16.0F, 1e-3F);
    EXPECT_NEAR(frames[3][10], 16.0F, 1e-3F);
    // From 72 on it is the mean of line and higher level: (2 + 3) / 2, (2.5 + 3) / 2, 3.
    EXPECT_EQ(frames[1][100], 15.0F); // 1.97 is below 2.5
    EXPECT_NEAR(frames[2][100], std::pow(2.75, 4), 0.01);
    EXPECT_NEAR(frames[3][100], 81.0F, 0.01F); // 3.16 comes down to 3
    // At 68 half of the way up from the lower level: 2 + 0.75 / 2.
    EXPECT_NEAR(frames[2][68], std::pow(2.375, 4), 0.01);
    // At 170 of 200 bins the repair is half faded out: (4 - 2.75) / 2 + 2.75.
    EXPECT_NEAR(frames[2][170], std::pow(3.375, 4), 0.02);
    // Bins from the limit on, and frames beside the region, stay.
    EXPECT_EQ(frames[2][200], 256.0F);
    EXPECT_EQ(frames[0][10], 17.0F);
    EXPECT_EQ(frames[4][10], 62.0F);
}

TEST_F(ReducePowerTest, RegionOfOneFrameStays)
{
    MakeFrames({1, 1, 256, 1, 1});
    Reduce({2, 2}, 0, 200, 2);
    EXPECT_EQ(frames[2], std::vector<float>(static_cast<std::size_t>(BinCount), 256.0F));
}

TEST_F(ReducePowerTest, StrengthMovesTheTargetInTheFourthRootDomain)
{
    // g = 2.001 at strength 10: the edge level 3 becomes 3 / 2.001, in power 81 / 2.001^4.
    MakeFrames({81, 256, 81});
    DSP::RepairSettings settings = MakeSettings(0);
    settings.strengthTerm = 2.0F;
    DSP::ReducePower({.power = pointers, .pitch = pitches, .binCount = BinCount},
                     {0, 2},
                     DSP::MakeRepairPitch(0, settings),
                     200,
                     settings);
    EXPECT_NEAR(frames[1][10], 81 / std::pow(2.001, 4), 1e-3);
    EXPECT_NEAR(frames[0][10], 81 / std::pow(2.001, 4), 1e-3); // the edge belongs to the region
}

TEST_F(ReducePowerTest, BinsAreFollowedToTheEdgesByTheirPitch)
{
    struct Row {
        float leftPitch; // of the edge; 100 Hz in the centre and on the right
        std::vector<std::array<std::size_t, 2>> lowered; // frame and bin that hold 16
        std::vector<std::array<std::size_t, 2>> expected;
    };
    const Row rows[] = {
        // What the centre shows at bin 60 would stand at bin 12; without a pitch it is at 60.
        {20, {{0, 60}}, {{1, 60}}},
        // Bin 60 would be at 900 and ends at the last one.
        {1500, {{0, 500}}, {{1, 60}}},
        // Bin 60 stands at bin 30. Bin 30 of frame 0 comes down to 16 first, by the right edge; bin
        // 60 then reads that 16.
        {50, {{2, 30}}, {{0, 30}, {1, 60}}},
    };
    for (const Row& row : rows) {
        frames.clear();
        pointers.clear();
        MakeFrames({10000, 10000, 10000});
        pitches = {row.leftPitch, 100, 100};
        for (const auto& [frame, bin] : row.lowered) {
            frames[frame][bin] = 16;
        }
        Reduce({0, 2}, 100, 200, 0);
        for (const auto& [frame, bin] : row.expected) {
            EXPECT_NEAR(frames[frame][bin], 16.0F, 1e-3F) << row.leftPitch << " " << bin;
        }
    }
}

TEST(ApplyGains, BringDownToTheTargetAndNeverUp)
{
    // Magnitudes squared 4, 4 and 100; targets 1, 16 and 25: gains 0.5, 1 (capped) and, beyond the
    // repaired bins, none.
    std::vector<float> spectrum{0, 2, -2, 0, 6, 8};
    const std::vector<float> power{1, 16, 25};
    DSP::ApplyGains(spectrum.data(), power.data(), 2, 1.0F);
    EXPECT_NEAR(spectrum[1], 1.0F, 1e-6F);
    EXPECT_EQ(spectrum[2], -2.0F);
    EXPECT_EQ(spectrum[4], 6.0F);
    EXPECT_EQ(spectrum[5], 8.0F);
}

TEST(ApplyGains, LowSeverityWeakensTheRepair)
{
    // Severity p lets the power down to target / p^2 only: 25 / 0.25 = 100 stays, 1 / 0.25 = 4 of
    // 100 is a gain of 0.2.
    std::vector<float> spectrum{6, 8, 6, 8};
    const std::vector<float> power{25, 1};
    DSP::ApplyGains(spectrum.data(), power.data(), 2, 0.5F);
    EXPECT_NEAR(spectrum[0], 6.0F, 1e-5F);
    EXPECT_NEAR(spectrum[2], 1.2F, 1e-5F);
    EXPECT_NEAR(spectrum[3], 1.6F, 1e-5F);
    // No severity, no repair; an empty bin stays empty.
    std::vector<float> still{6, 8, 0, 0};
    DSP::ApplyGains(still.data(), power.data(), 2, 0.0F);
    EXPECT_EQ(still, (std::vector<float>{6, 8, 0, 0}));
}

} // namespace
