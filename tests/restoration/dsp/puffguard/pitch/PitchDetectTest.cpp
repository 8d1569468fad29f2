// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PitchDetect.h"

#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <numbers>

namespace {

using DSP::Context;
using DSP::PitchDetect::PitchDetect;
using Inner = DSP::Synapse::Synapse;

constexpr uint32_t Mono = 0; // codes of the layouts
constexpr uint32_t Stereo = 1;
constexpr uint32_t Frames = 512;

/// The element inside, which holds what the outer one hands on.
Inner& GetInner(const PitchDetect& element)
{
    return dynamic_cast<Inner&>(*element.GetChild(0));
}

/// As the repair sets it up.
void Configure(PitchDetect& element)
{
    element.SetBoolValue(PitchDetect::Analyze, true, Context::Process, {});
    element.SetEnumValue(PitchDetect::VocalRange, 0, Context::Process, {});
    element.SetEnumValue(PitchDetect::DynamicProgrammingPatches, 1, Context::Process, {});
}

/// Feeds a second of one sine a channel; answers the last pitch.
float FindPitch(PitchDetect& element, double leftHz, double rightHz)
{
    std::vector<float> left(Frames);
    std::vector<float> right(Frames);
    const std::array<float*, 2> channels{left.data(), right.data()};
    for (uint32_t at = 0; at < 44100; at += Frames) {
        for (uint32_t i = 0; i < Frames; ++i) {
            const double turn = 2 * std::numbers::pi * (at + i) / 44100;
            left[i] = static_cast<float>(0.3 * std::sin(turn * leftHz));
            right[i] = static_cast<float>(0.3 * std::sin(turn * rightHz));
        }
        element.Process(Frames, channels.data());
    }
    return element.GetPitch();
}

TEST(PitchDetect, HandsItsParametersOnAndTheHostItsLatency)
{
    Support::TestElementHost host;
    PitchDetect element({host, 44100, Mono});
    Inner& inner = GetInner(element);
    EXPECT_EQ(inner.GetEnumValue(Inner::VocalRangeParam, Context::Process), 1U);
    EXPECT_EQ(element.GetFloatValue(PitchDetect::LowpassFrequency, Context::Process), 300.0F);
    // The waits, 32 * 2 * 64 = 4096, and half a frame: 441 / 4 = 110, * 1.8 = 198, * 2 = 396.
    EXPECT_EQ(element.GetLatency(Context::Process), 4492U);
    const int before = host.latencyChanges;
    Configure(element);
    element.SetFloatValue(PitchDetect::HighpassFrequency, 2000, Context::Process, {});
    EXPECT_TRUE(inner.GetBoolValue(Inner::Analyze, Context::Process));
    EXPECT_EQ(inner.GetEnumValue(Inner::VocalRangeParam, Context::Process), 0U);
    EXPECT_EQ(inner.GetEnumValue(Inner::DynamicProgrammingPatches, Context::Process), 1U);
    EXPECT_EQ(inner.GetFloatValue(Inner::HighpassFrequency, Context::Process), 1000.0F);

    // For the lower voices (980 / 4 * 1.8 = 441) * 2 = 882.
    EXPECT_EQ(element.GetLatency(Context::Process), 4978U);
    EXPECT_EQ(host.latencyChanges, before + 1);
    element.SetBoolValue(PitchDetect::DisableDynamicProgramming, true, Context::Process, {});
    EXPECT_EQ(element.GetLatency(Context::Process), 890U); // without a look ahead: 32 / 4 + 882
    inner.SetBoolValue(Inner::LowLatency, true, Context::Process, {});
    EXPECT_EQ(host.latencyChanges, before + 2); // nothing left to shorten
    EXPECT_EQ(element.GetMaxLatency(), 4978U);
}

TEST(PitchDetect, TellsThePitchWhenAskedToAnalyseAndLeavesTheBlockAlone)
{
    Support::TestElementHost host;
    PitchDetect element({host, 44100, Mono});
    EXPECT_EQ(FindPitch(element, 150, 150), 0.0F);
    Configure(element);
    EXPECT_NEAR(FindPitch(element, 150, 150), 150.0F, 3.0F);
    std::vector<float> block(300, 0.25F);
    float* const channels[] = {block.data()};
    element.Process(300, channels);
    EXPECT_EQ(block, std::vector<float>(300, 0.25F));
}

TEST(PitchDetect, ReadsTheChannelsAsTold)
{
    Support::TestElementHost host;
    PitchDetect element({host, 44100, Stereo});
    Configure(element);
    Inner& inner = GetInner(element);
    inner.SetEnumValue(Inner::StereoInput, 0, Context::Process, {});
    EXPECT_NEAR(FindPitch(element, 150, 220), 150.0F, 3.0F);
    inner.SetEnumValue(Inner::StereoInput, 1, Context::Process, {});
    EXPECT_NEAR(FindPitch(element, 150, 220), 220.0F, 5.0F);
    inner.SetEnumValue(Inner::StereoInput, 2, Context::Process, {});
    EXPECT_NEAR(FindPitch(element, 150, 300), 150.0F, 3.0F); // both: the fundamental of the sum
    element.Reset();
    EXPECT_EQ(element.GetPitch(), 0.0F);
}

} // namespace
