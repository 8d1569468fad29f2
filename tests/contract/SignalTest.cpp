// SPDX-License-Identifier: ISC
// Audio through the entry: how blocks are cut, how late things come out, what passes unchanged.
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <tuple>
#include <vector>

namespace {

using namespace TestHost;

constexpr float Rate = 44100.0F;

/// First place where two takes differ, or -1. Equal means equal bits, so NaN would count.
long FirstDifference(const Audio& a, const Audio& b)
{
    for (std::size_t c = 0; c < a.size(); ++c) {
        for (std::size_t i = 0; i < a[c].size(); ++i) {
            if (!(a[c][i] == b[c][i]))
                return static_cast<long>(i);
        }
    }
    return -1;
}

bool AllFinite(const Audio& audio)
{
    return std::all_of(audio.begin(), audio.end(), [](const auto& channel) {
        return std::all_of(
            channel.begin(), channel.end(), [](float sample) { return std::isfinite(sample); });
    });
}

/// Largest distance between the output and the input `late` samples before.
float LargestError(const Audio& output, const Audio& input, uint32_t late)
{
    float largest = 0.0F;
    for (std::size_t c = 0; c < output.size(); ++c) {
        for (std::size_t i = 0; i < output[c].size(); ++i) {
            const float wanted = i < late ? 0.0F : input[c][i - late];
            largest = std::max(largest, std::abs(output[c][i] - wanted));
        }
    }
    return largest;
}

/// The latency by the rules of the repair: frames of F samples, the least power of two that lasts
/// 70 ms; hops of F / 8; a look-ahead of L + M hops to each side of the frame that is judged, where
/// L lasts 70 ms and M 50 ms of the scaled length, at least 2 and 3 hops.
uint32_t LatencyInTheory(double sampleRate, double scaling)
{
    double frame = 8;
    while (frame < 0.07 * sampleRate)
        frame *= 2;
    const double hop = frame / 8;
    const double peak = std::max(2.0, std::round(sampleRate * scaling * 0.07 / hop));
    const double edge = std::max(3.0, std::round(sampleRate * scaling * 0.05 / hop));
    return static_cast<uint32_t>(frame - 1 + hop * 2 * (peak + edge));
}

TEST(Blocks, TheCutOfTheStreamChangesNoBit)
{
    const Audio input = MakeSpeechLike(2, 120'000, Rate);
    Instance whole(Rate, 2);
    Audio expected = input;
    whole.Run(expected, 512);
    ASSERT_GT(whole.Detections(), 0U) << "a signal without repairs would prove little";
    ASSERT_NE(FirstDifference(expected, input), -1);

    std::mt19937 engine(5);
    const auto random = [&engine] { return static_cast<uint32_t>(1 + engine() % 3000); };
    for (const uint32_t block : {1U, 17U, 64U, 480U, 4096U, 20000U, 120'000U, 0U}) {
        Instance instance(Rate, 2);
        Audio audio = input;
        if (block == 0)
            instance.Run(audio, random);
        else
            instance.Run(audio, block);
        EXPECT_EQ(FirstDifference(audio, expected), -1) << "block " << block;
        EXPECT_EQ(instance.Detections(), whole.Detections()) << "block " << block;
    }
}

TEST(Blocks, AfterAResetTheSameAudioComesOutAgain)
{
    const Audio input = MakeSpeechLike(1, 100'000, Rate);
    Instance instance(Rate, 1);
    Audio first = input;
    instance.Run(first, 1000);
    instance.Settle();
    Audio second = input;
    instance.Run(second, 1000);
    EXPECT_EQ(FirstDifference(second, first), -1);
}

TEST(Blocks, OfNoFramesLeaveTheAudioAndTheStreamAlone)
{
    const Audio input = MakeSpeechLike(1, 60'000, Rate);
    Instance plain(Rate, 1);
    Audio expected = input;
    plain.Run(expected, 600);
    Instance interrupted(Rate, 1);
    Audio audio = input;
    interrupted.Run(audio, [&] {
        EXPECT_EQ(interrupted.RunBlock(audio, 0, 0), PluginCoreSuccess);
        return 600U;
    });
    EXPECT_EQ(FirstDifference(audio, expected), -1);
}

/// Sample rate and channel count.
class Latency : public testing::TestWithParam<std::tuple<float, uint32_t>> {};

TEST_P(Latency, DryPathWetPathAndReportAgreeToTheSample)
{
    const auto [rate, channels] = GetParam();
    Instance instance(rate, channels);
    const uint32_t reported = instance.Latency(UI);
    ASSERT_EQ(reported, LatencyInTheory(static_cast<double>(rate), 1.0));
    EXPECT_EQ(instance.Latency(Process), reported);

    // An impulse in each channel, at a place of its own.
    Audio input(channels, std::vector<float>(reported + 2000));
    for (std::size_t c = 0; c < input.size(); ++c)
        input[c][100 + 7 * c] = 1.0F - static_cast<float>(c) / 64.0F;

    instance.Set(Strength, 0.0F);
    Audio wet = input;
    instance.Run(wet, 480);
    // The windows' sums are rounded to float once, and two transforms of at most 2^14 points add
    // some ten roundings each: far below -100 dB. A latency wrong by one sample gives an error
    // of 1.
    EXPECT_LT(LargestError(wet, input, reported), 1e-5F);

    instance.Set(GlobalBypass, 1.0F);
    instance.Settle();
    Audio dry = input;
    instance.Run(dry, 480);
    EXPECT_EQ(LargestError(dry, input, reported), 0.0F);
}

INSTANTIATE_TEST_SUITE_P(
    Formats,
    Latency,
    testing::Combine(
        testing::Values(
            8000.0F, 16000.0F, 22050.0F, 44100.0F, 48000.0F, 88200.0F, 96000.0F, 192000.0F),
        testing::Values(1U, 2U, 6U, 24U)),
    [](const auto& param) {
        return std::to_string(static_cast<int>(std::get<0>(param.param))) + "Hz" +
               std::to_string(std::get<1>(param.param)) + "Channels";
    });

TEST(LatencyScaling, ShortensAllPathsAndTellsTheHost)
{
    // F = 4096, H = 512: at scaling 1 L = 6 and M = 4, at scaling 0 L = 2 and M = 3, so that
    // F - 1 + 2 H (L + M) is 14335 and 9215.
    ASSERT_EQ(LatencyInTheory(44100, 1), 14335U);
    ASSERT_EQ(LatencyInTheory(44100, 0), 9215U);
    Instance instance(Rate, 1);
    EXPECT_EQ(instance.Latency(), 14335U);
    instance.SetElement(ElementLatencyScaling, 0.0F);
    EXPECT_EQ(instance.Latency(UI), 9215U);
    EXPECT_EQ(instance.Latency(Process), 9215U);
    const auto calls = instance.Calls();
    EXPECT_TRUE(std::any_of(calls.begin(), calls.end(), [](const HostCall& call) {
        return call.opcode == HostOpcodeLatencyChanged && call.word == 9215U;
    }));
    Audio input(1, std::vector<float>(20'000));
    input[0][50] = 1.0F;
    instance.Set(Strength, 0.0F);
    Audio wet = input;
    instance.Run(wet, 333);
    EXPECT_LT(LargestError(wet, input, 9215), 1e-5F);
    instance.Set(GlobalBypass, 1.0F);
    instance.Settle();
    Audio dry = input;
    instance.Run(dry, 333);
    EXPECT_EQ(LargestError(dry, input, 9215), 0.0F);
}

TEST(Passing, StrengthZeroLetsEvenBurstsPass)
{
    Instance instance(Rate, 2);
    instance.Set(Strength, 0.0F);
    const Audio input = MakeSpeechLike(2, 120'000, Rate);
    Audio output = input;
    instance.Run(output, 777);
    EXPECT_LT(LargestError(output, input, instance.Latency()), 1e-5F);
}

TEST(Passing, SilenceStaysSilence)
{
    Instance instance(Rate, 2);
    Audio audio(2, std::vector<float>(120'000));
    instance.Run(audio, 777);
    EXPECT_EQ(LargestError(audio, audio, 0), 0.0F);
    EXPECT_EQ(*std::max_element(audio[0].begin(), audio[0].end()), 0.0F);
    EXPECT_EQ(*std::min_element(audio[0].begin(), audio[0].end()), 0.0F);
    EXPECT_EQ(instance.Detections(), 0U);
}

TEST(Passing, LeavingBypassGivesOneLatencyOfSilenceAndThenTheRepair)
{
    Instance instance(Rate, 1);
    const Audio input = MakeSpeechLike(1, 60'000, Rate);
    Audio fresh = input;
    instance.Run(fresh, 500);

    instance.Set(GlobalBypass, 1.0F);
    Audio bypassed = input;
    instance.Run(bypassed, 500);
    instance.Set(GlobalBypass, 0.0F);
    Audio again = input;
    instance.Run(again, 500);
    EXPECT_EQ(FirstDifference(again, fresh), -1);
}

TEST(BadSamples, CountAsZeroAndHarmNothingAfterThem)
{
    const Audio clean = MakeSpeechLike(2, 100'000, Rate);
    Audio holed = clean;
    Audio broken = clean;
    constexpr float bad[] = {std::numeric_limits<float>::quiet_NaN(),
                             std::numeric_limits<float>::infinity(),
                             -std::numeric_limits<float>::infinity(),
                             std::numeric_limits<float>::signaling_NaN()};
    for (std::size_t i = 0; i < 40; ++i) {
        const std::size_t at = 3000 + 997 * i;
        broken[i % 2][at] = bad[i % 4];
        holed[i % 2][at] = 0.0F;
    }
    Instance plain(Rate, 2);
    plain.Run(holed, 512);
    Instance hit(Rate, 2);
    hit.Run(broken, 512);
    EXPECT_TRUE(AllFinite(broken));
    EXPECT_EQ(FirstDifference(broken, holed), -1);
}

TEST(BadSamples, HugeOnesAreForgottenOnceTheyHavePassed)
{
    Instance instance(Rate, 1);
    Audio huge(1, std::vector<float>(4000, std::numeric_limits<float>::max()));
    instance.Run(huge, 512);
    instance.Settle();
    const Audio input = MakeSpeechLike(1, 60'000, Rate);
    Audio audio = input;
    instance.Run(audio, 512);
    Instance fresh(Rate, 1);
    Audio expected = input;
    fresh.Run(expected, 512);
    EXPECT_EQ(FirstDifference(audio, expected), -1);
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

TEST(NullPointers, AMissingFurtherChannelLeavesTheOthersAlone)
{
    constexpr uint32_t block = 20'000; // more than one chunk: a null that is advanced is none
    Instance instance(Rate, 3);
    instance.Set(GlobalBypass, 1.0F);
    const uint32_t latency = instance.Latency();
    const Audio input = MakeSpeechLike(3, 2 * block, Rate);
    Audio audio = input;
    for (uint32_t done = 0; done < 2 * block; done += block) {
        float* pointers[3] = {audio[0].data() + done, nullptr, audio[2].data() + done};
        ProcessRecord record{};
        record.frames = block;
        record.channels = pointers;
        ASSERT_EQ(Call(SelectorProcess, Process, instance.Get(), &record), PluginCoreSuccess);
    }
    EXPECT_EQ(audio[1], input[1]);
    for (const std::size_t c : {0U, 2U}) {
        for (std::size_t i = latency; i < audio[c].size(); ++i)
            ASSERT_EQ(audio[c][i], input[c][i - latency]) << "channel " << c << ", frame " << i;
    }
}

TEST(Transport, AndSideBusesAreTakenInAnyShape)
{
    Instance plain(Rate, 1);
    const Audio input = MakeSpeechLike(1, 60'000, Rate);
    Audio expected = input;
    plain.Run(expected, 20'000);

    Instance instance(Rate, 1);
    Audio audio = input;
    std::vector<float> side(20'000);
    float* sidePointers[2] = {side.data(), nullptr};
    TransportRecord transport{};
    for (uint32_t done = 0; done < 60'000; done += 20'000) {
        float* pointers[1] = {audio[0].data() + done};
        transport.position = done == 0 ? std::numeric_limits<double>::quiet_NaN() : 1e300;
        transport.isPositionValid = 1;
        ProcessRecord record{};
        record.frames = 20'000;
        record.channels = pointers;
        record.transport = &transport;
        record.sideBusCount = PLUGIN_CORE_MAX_SIDE_BUSES;
        for (auto& bus : record.sideBuses)
            bus = sidePointers;
        for (auto& count : record.sideBusChannels)
            count = 2;
        record.renderFlagA = 1;
        record.renderFlagB = done > 0 ? 1 : 0;
        ASSERT_EQ(Call(SelectorProcess, Process, instance.Get(), &record), PluginCoreSuccess);
    }
    EXPECT_EQ(FirstDifference(audio, expected), -1);
}

} // namespace
