// SPDX-License-Identifier: ISC
// Two threads drive an instance, and many instances share the module. Most of what these tests find
// they find under the thread sanitizer.
#include "tests/support/AudioThread.h"
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <random>
#include <thread>

namespace {

using namespace TestHost;

/// Noise in blocks of changing length. The memory is that of the largest layout, since the other
/// thread may change it before any block.
std::function<bool()> PlayNoise(Instance& instance)
{
    return [&instance,
            audio = Audio(PLUGIN_CORE_MAX_CHANNELS, std::vector<float>(3000)),
            engine = std::mt19937(3)]() mutable {
        for (auto& channel : audio) {
            std::generate(channel.begin(), channel.end(), [&] {
                return static_cast<float>(engine() % 1000) / 1000.0F - 0.5F;
            });
        }
        const auto frames = static_cast<uint32_t>(1 + engine() % 3000);
        bool isGood = instance.RunBlock(audio, 0, frames) == PluginCoreSuccess;
        for (const auto& channel : audio) {
            isGood = isGood && std::all_of(channel.begin(), channel.end(), [](float sample) {
                         return std::abs(sample) <= 8.0F; // no NaN is
                     });
        }
        return isGood;
    };
}

/// The instance works like a fresh one of this format.
void ExpectLikeNew(Instance& instance, float rate, uint32_t channels)
{
    Instance fresh(rate, channels);
    EXPECT_EQ(instance.Latency(UI), fresh.Latency(UI));
    EXPECT_EQ(instance.Latency(Process), fresh.Latency(Process));
    Audio expected = MakeSpeechLike(channels, 40'000, rate);
    Audio audio = expected;
    fresh.Run(expected, 512);
    instance.Settle();
    instance.Run(audio, 512);
    EXPECT_EQ(audio, expected);
}

TEST(FormatChange, WhileAudioRunsOnAnotherThread)
{
    Instance instance(44100.0F, 2);
    {
        const Support::AudioThread audio(PlayNoise(instance));
        const std::array<std::pair<float, uint32_t>, 6> formats{std::pair{48000.0F, 1U},
                                                                {96000.0F, 2U},
                                                                {8000.0F, 24U},
                                                                {192000.0F, 2U},
                                                                {16000.0F, 6U},
                                                                {22050.0F, 3U}};
        for (int round = 0; round < 3; ++round) {
            for (const auto& [rate, channels] : formats) {
                EXPECT_EQ(instance.SetFormat(rate, LayoutOf(channels)), PluginCoreSuccess);
                audio.WaitForBlocks(1);
            }
        }
        EXPECT_TRUE(audio.SawOnlyGoodAudio());
    }
    instance.SetFormat(48000.0F, LayoutOf(2));
    ExpectLikeNew(instance, 48000.0F, 2);
}

TEST(FormatChange, ToWhatCannotBeServedChangesNothing)
{
    Instance instance(44100.0F, 2);
    for (const auto& [rate, layout] : {std::pair{0.0F, 1U},
                                       {-1.0F, 1U},
                                       {std::nanf(""), 1U},
                                       {HUGE_VALF, 1U},
                                       {48000.0F, 35U},
                                       {48000.0F, 41U},
                                       {48000.0F, 0xFFFFFFFFU}}) {
        EXPECT_EQ(instance.SetFormat(rate, layout), PluginCoreSuccess);
        ExpectLikeNew(instance, 44100.0F, 2);
    }
}

TEST(FormatChange, WithinAFormatChangeIsIgnored)
{
    Instance instance(44100.0F, 1);
    uint32_t inner = 0;
    instance.onHostCall = [&](const HostCall& call) {
        if (call.opcode == HostOpcodeLatencyChanged) {
            ++inner;
            instance.SetFormat(8000.0F, 0);
            instance.Latency(UI);
        }
    };
    instance.SetFormat(96000.0F, LayoutOf(2));
    instance.onHostCall = nullptr;
    EXPECT_GT(inner, 0U);
    ExpectLikeNew(instance, 96000.0F, 2);
}

TEST(FormatChange, ToTheSameFormatForgetsNothing)
{
    Audio whole = MakeSpeechLike(1, 60'000, 44100.0F);
    Audio parts = whole;
    Instance first(44100.0F, 1);
    first.Run(whole, 600);
    Instance second(44100.0F, 1);
    second.Run(parts, [&] {
        second.SetFormat(44100.0F, 0);
        return 600U;
    });
    EXPECT_EQ(parts, whole);
}

TEST(Storm, OfEverythingThatTheUISideMayCall)
{
    Instance instance(44100.0F, 1);
    const Support::AudioThread audio(PlayNoise(instance));
    for (int i = 0; i < 60; ++i) {
        uint32_t latency = 0;
        ProcessingStateRecord state{i % 2, i % 3 == 0 ? 1 : 0};
        Call(SelectorSetProcessingState, UI, instance.Get(), &state);
        Call(SelectorResetProcessing, UI, instance.Get(), &latency);
        instance.Set(GlobalBypass, static_cast<float>(i % 2));
        instance.SetFormat(i % 10 == 0 ? 48000.0F : 44100.0F, LayoutOf(1));
        Call(SelectorTransformReset, UI, instance.Get(), nullptr);
        audio.WaitForBlocks(1);
    }
    EXPECT_TRUE(audio.SawOnlyGoodAudio());
}

TEST(Instances, TwoHundredComeAndGoOnSeveralThreads)
{
    constexpr uint32_t ThreadCount = 8;
    constexpr uint32_t InstancesEach = 25;
    const Audio input = MakeSpeechLike(1, 20'000, 16000.0F);
    Audio expected = input;
    {
        Instance alone(16000.0F, 1);
        alone.Run(expected, 1000);
    }
    std::atomic<uint32_t> good = 0;
    std::vector<std::thread> threads;
    for (uint32_t t = 0; t < ThreadCount; ++t) {
        threads.emplace_back([&] {
            std::vector<std::unique_ptr<Instance>> held; // several live at a time
            for (uint32_t i = 0; i < InstancesEach; ++i) {
                held.push_back(std::make_unique<Instance>(16000.0F, 1));
                Audio audio = input;
                held.back()->Run(audio, 1000);
                if (audio == expected) {
                    ++good;
                }
                if (held.size() == 5) {
                    held.erase(held.begin(), held.begin() + 4);
                }
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(good, ThreadCount * InstancesEach);
}

} // namespace
