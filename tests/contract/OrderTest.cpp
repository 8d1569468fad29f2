// SPDX-License-Identifier: ISC
// Calls of the entry in an order that no host should choose, and more of them than it would make.
#include "tests/contract/support/Takes.h"

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>

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

TEST(Order, OfManyFormatsTheLastCountsAndInitializingAgainChangesNothing)
{
    Instance instance(44100.0F, 2);
    instance.Set(Strength, 0.75F);
    std::mt19937 engine(1);
    for (uint32_t round = 0; round < Rounds(200); ++round) {
        const auto layout = static_cast<uint32_t>(engine() % 42);
        const auto rate = static_cast<float>(8000 + engine() % 40'000);
        EXPECT_EQ(instance.SetFormat(rate, layout), PluginCoreSuccess);
        EXPECT_EQ(Ask(instance.Get(), SelectorInitialize), PluginCoreSuccess);
    }
    instance.SetFormat(48000.0F, LayoutOf(2));
    Audio audio = MakeSpeech(48000, 2);
    const Audio expected = Expected(audio, 48000, {0.5F, 0.75F});
    instance.Run(audio, 512);
    EXPECT_EQ(Difference(audio, expected), "");
}
