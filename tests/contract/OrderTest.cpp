// SPDX-License-Identifier: ISC
// Calls of the entry in an order that no host should choose, and more of them than it would make.
#include "tests/contract/support/Takes.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <thread>

namespace {

using namespace TestHost;
using namespace Contract;

/// Makes an instance and nothing more; for its caller to end.
PluginCore* Create(uint32_t channels)
{
    PluginCore* instance = nullptr;
    CreateRecord record{};
    std::strcpy(&record.modulePath[0], PUFFGUARD_MODULE);
    record.instance = &instance;
    record.sampleRate = 48000;
    record.channelConfig = LayoutOf(channels);
    EXPECT_EQ(Call(SelectorCreatePlugin, UI, nullptr, &record), PluginCoreSuccess);
    return instance;
}

uint32_t Ask(PluginCore* instance, uint32_t selector)
{
    return Call(selector, UI, instance, nullptr);
}

} // namespace

TEST(Order, InstancesEndFromEveryPointOfTheirLife)
{
    constexpr std::array<uint32_t, 4> Initialize = {0, 1, 2, 1};
    constexpr std::array<uint32_t, 4> Terminate = {0, 0, 1, 2};
    for (uint32_t round = 0; round < Rounds(1000); ++round) {
        PluginCore* const instance = Create(1 + round % 2);
        ASSERT_NE(instance, nullptr);
        for (uint32_t i = 0; i < Initialize[round % 4]; ++i) {
            EXPECT_EQ(Ask(instance, SelectorInitialize), PluginCoreSuccess);
        }
        for (uint32_t i = 0; i < Terminate[round % 4]; ++i) {
            EXPECT_EQ(Ask(instance, SelectorTerminate), PluginCoreSuccess);
        }
        EXPECT_EQ(Ask(instance, SelectorDestroyPlugin), PluginCoreSuccess);
    }
}

TEST(Order, InitializingTwiceChangesNothing)
{
    const Audio speech = MakeSpeech(48000, 2);
    Instance instance(48000.0F, 2);
    instance.Set(Strength, 0.75F);
    EXPECT_EQ(Ask(instance.Get(), SelectorInitialize), PluginCoreSuccess);
    EXPECT_EQ(instance.Value(Strength), 0.75F);
    Audio audio = speech;
    instance.Run(audio, 512);
    EXPECT_EQ(Difference(audio, Expected(speech, 48000, {0.5F, 0.75F})), "");
}

TEST(Order, OfManyFormatsTheLastCounts)
{
    Instance instance(44100.0F, 2);
    std::mt19937 engine(1);
    for (uint32_t round = 0; round < Rounds(200); ++round) {
        const auto layout = static_cast<uint32_t>(engine() % 42);
        const auto rate = static_cast<float>(8000 + engine() % 40'000);
        EXPECT_EQ(instance.SetFormat(rate, layout), PluginCoreSuccess);
    }
    instance.SetFormat(48000.0F, LayoutOf(2));
    Audio audio = MakeSpeech(48000, 2);
    const Audio expected = Expected(audio, 48000);
    instance.Run(audio, 512);
    EXPECT_EQ(Difference(audio, expected), "");
}

TEST(Describing, TakesOptionsWithoutAnEndOnManyThreads)
{
    std::array<std::thread, 8> threads;
    for (std::thread& thread : threads) {
        thread = std::thread([] {
            for (uint32_t round = 0; round < Rounds(200); ++round) {
                PluginInfoRecord info;
                std::memset(&info, 0xEE, sizeof info);
                PluginInfoRequest request;
                std::memset(&request, 'x', sizeof request);
                request.info = &info;
                ASSERT_EQ(Call(SelectorGetPluginInfo, UI, nullptr, &request), PluginCoreSuccess);
                EXPECT_EQ(request.identity.options[1023], '\0');
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

TEST(Transport, ThatJumpsLoopsOrIsNonsenseChangesNoBitNorDoSideBuses)
{
    const Audio speech = MakeSpeech(48000, 1);
    Instance instance(48000.0F, 1);
    Audio audio = speech;
    std::mt19937 engine(1);
    const auto frames = static_cast<uint32_t>(audio[0].size());
    std::vector<float> side(2000);
    float* sidePointers[2] = {side.data(), nullptr};
    float** const sideBus = sidePointers;
    for (uint32_t done = 0; done < frames;) {
        const uint32_t block = std::min(frames - done, static_cast<uint32_t>(1 + engine() % 2000));
        TransportRecord transport;
        for (size_t i = 0; i < sizeof transport; ++i) { // rates of 0, backwards, no numbers at all
            reinterpret_cast<uint8_t*>(&transport)[i] = static_cast<uint8_t>(engine());
        }
        if (engine() % 2 == 0) {
            transport.position = static_cast<double>(engine() % 100'000) - 50'000;
        }
        float* pointers[1] = {audio[0].data() + done};
        ProcessRecord record{};
        record.frames = block;
        record.channels = pointers;
        record.transport = engine() % 8 == 0 ? nullptr : &transport;
        record.renderFlagA = static_cast<int32_t>(engine() % 2);
        record.renderFlagB = static_cast<int32_t>(engine() % 2);
        record.sideBusCount = static_cast<uint32_t>(engine() % 2) * PLUGIN_CORE_MAX_SIDE_BUSES;
        std::fill(std::begin(record.sideBuses), std::end(record.sideBuses), sideBus);
        std::fill(std::begin(record.sideBusChannels), std::end(record.sideBusChannels), 2);
        ASSERT_EQ(Call(SelectorProcess, Process, instance.Get(), &record), PluginCoreSuccess);
        done += block;
    }
    EXPECT_EQ(Difference(audio, Expected(speech, 48000)), "");
}
