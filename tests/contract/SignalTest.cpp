// SPDX-License-Identifier: ISC
// Audio through the entry: how late things come out, and what is answered without memory.
#include "tests/contract/support/Takes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

using namespace TestHost;
using namespace Contract;

constexpr float Rate = 44100.0F;

/// The latency by the rules of the repair: frames of F samples, the least power of two that lasts
/// 70 ms; hops of F / 8; a look-ahead of L + M hops to each side of the frame that is judged, where
/// L lasts 70 ms and M 50 ms of the scaled length, at least 2 and 3 hops.
uint32_t LatencyInTheory(double sampleRate, double scaling)
{
    double frame = 8;
    while (frame < 0.07 * sampleRate) {
        frame *= 2;
    }
    const double hop = frame / 8;
    const double peak = std::max(2.0, std::round(sampleRate * scaling * 0.07 / hop));
    const double edge = std::max(3.0, std::round(sampleRate * scaling * 0.05 / hop));
    return static_cast<uint32_t>(frame - 1 + hop * 2 * (peak + edge));
}

/// Both paths are as late as the report says, the dry one to the bit and the wet one, without any
/// strength, also where there are bursts. What impulses take is seen in all formats alike.
void ExpectLate(Instance& instance, float rate, uint32_t channels, uint32_t latency)
{
    EXPECT_EQ(instance.Latency(UI), latency);
    EXPECT_EQ(instance.Latency(Process), latency);
    const Audio input = MakeSpeechLike(channels, latency + 20'000, rate);
    const Audio expected = Delayed(input, latency);
    for (const bool isBypassed : {false, true}) {
        instance.Set(Strength, 0.0F);
        instance.Set(GlobalBypass, isBypassed ? 1.0F : 0.0F);
        instance.Settle();
        Audio audio = input;
        instance.Run(audio, 480);
        EXPECT_LE(LargestError(audio, expected), isBypassed ? 0.0F : 1e-5F) << isBypassed;
    }
}

TEST(Latency, OfDryPathWetPathAndReportIsThatOfTheRules)
{
    for (const float rate :
         {8000.0F, 16000.0F, 22050.0F, 44100.0F, 48000.0F, 88200.0F, 96000.0F, 192000.0F}) {
        for (const uint32_t channels : {1U, 2U, 24U}) {
            SCOPED_TRACE(testing::Message() << rate << " Hz, " << channels << " channels");
            Instance instance(rate, channels);
            ExpectLate(instance, rate, channels, LatencyInTheory(static_cast<double>(rate), 1.0));
        }
    }
}

TEST(LatencyScaling, ShortensAllPathsAndTellsTheHost)
{
    // F = 4096, H = 512: at scaling 1 L = 6 and M = 4, at scaling 0 L = 2 and M = 3, so that
    // F - 1 + 2 H (L + M) is 14335 and 9215.
    ASSERT_EQ(LatencyInTheory(44100, 1), 14335U);
    ASSERT_EQ(LatencyInTheory(44100, 0), 9215U);
    Instance instance(Rate, 1);
    EXPECT_EQ(instance.Latency(), 14335U);
    instance.SetElement(ElementLatencyScaling, 0.0F);
    ExpectLate(instance, Rate, 1, 9215);
    const auto calls = instance.Calls();
    EXPECT_TRUE(std::any_of(calls.begin(), calls.end(), [](const HostCall& call) {
        return call.opcode == HostOpcodeLatencyChanged && call.word == 9215U;
    }));
}

TEST(Bypass, TakesInWhatIsSetAndBeginsANewLatencyWithItsSilence)
{
    const Audio input = MakeSpeechLike(2, 40'000, Rate);
    Instance instance(Rate, 2);
    instance.Set(GlobalBypass, 1.0F);
    Audio audio = input;
    instance.Run(audio, 512);
    EXPECT_EQ(Difference(audio, Delayed(input, 14335)), "");
    instance.Set(Strength, 0.75F);
    instance.SetElement(ElementLatencyScaling, 0.0F);
    EXPECT_EQ(instance.Value(Strength, Process), 0.5F) << "it waits for a block";
    audio = input;
    instance.Run(audio, 512);
    EXPECT_EQ(instance.Value(Strength, Process), 0.75F);
    EXPECT_EQ(Difference(audio, Delayed(input, 9215)), "");
}

TEST(NullPointers, OfChannelsAreAnsweredOrSkipped)
{
    Instance instance(Rate, 2);
    std::vector<float> left(512, 0.25F);
    ProcessRecord record{};
    record.frames = 512;
    EXPECT_EQ(Call(SelectorProcess, Process, instance.Get(), &record), PluginCoreNullRecord);
    float* pointers[2] = {nullptr, left.data()};
    record.channels = pointers;
    EXPECT_EQ(Call(SelectorProcess, Process, instance.Get(), &record), PluginCoreNullRecord);
    EXPECT_EQ(left[0], 0.25F);
    pointers[0] = left.data();
    pointers[1] = nullptr;
    EXPECT_EQ(Call(SelectorProcess, Process, instance.Get(), &record), PluginCoreSuccess);
}

} // namespace
