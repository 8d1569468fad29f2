// SPDX-License-Identifier: ISC
// The built bundle in a host that does what hosts do. What should come out is what the module gives
// when it is driven directly.
#include "tests/contract/support/Takes.h"
#include "tests/wrappers/lv2/support/Lv2Host.h"

#include <gtest/gtest.h>
#include <lv2/atom/atom.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

using Lv2Host::Audio;
using Lv2Host::Saved;

namespace {

constexpr uint32_t rate = 48000;

Audio Speech(uint32_t channels)
{
    return Contract::MakeSpeech(rate, channels, 1.0);
}

/// What the module makes of it at `strength`, 0 to 10.
Audio Expected(const Audio& audio, float strength = 5.0F)
{
    return Contract::Expected(audio, rate, {.strength = strength / 10});
}

class Lv2Test : public testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_NE(TestHost::Entry(), nullptr); }

    Lv2Host::Features features;
};

} // namespace

TEST_F(Lv2Test, AHostThatNeverActivatesOffersNothingAndConnectsNoControlsIsServed)
{
    const Audio expected = Expected(Speech(2));
    Lv2Host::Instance plugin("stereo", 2, rate, nullptr);
    ASSERT_TRUE(plugin);
    plugin.Run(64); // nothing is connected at all
    plugin.Run(0);
    plugin.Activate(); // the silence above is forgotten
    plugin.Deactivate();
    for (uint32_t port = 0; port < 100; ++port) {
        plugin.Connect(port, nullptr);
    }
    plugin.Run(0);
    Audio audio = Speech(2);
    plugin.Run(audio, 777);
    EXPECT_EQ(audio, expected);
    std::optional<Saved> saved;
    EXPECT_EQ(plugin.Save(saved), LV2_STATE_ERR_NO_FEATURE);
    EXPECT_EQ(plugin.Restore(saved), LV2_STATE_ERR_NO_FEATURE);
}

TEST_F(Lv2Test, ChannelsMayShareMemoryOrBeMissing)
{
    Lv2Host::Instance plugin("stereo", 2, rate, &features);
    ASSERT_TRUE(plugin);
    const Audio speech = Speech(2);
    const Audio expected = Expected(speech);
    Audio memory = speech;
    // The left output is where the right input is, and the other way round.
    plugin.ConnectAudio(0, memory[0].data(), memory[1].data());
    plugin.ConnectAudio(1, memory[1].data(), memory[0].data());
    plugin.Run(rate);
    EXPECT_EQ(memory[1], expected[0]);
    EXPECT_EQ(memory[0], expected[1]);

    plugin.Activate();
    memory = speech;
    plugin.ConnectAudio(0, memory[0].data(), nullptr);
    plugin.ConnectAudio(1, memory[1].data(), memory[1].data());
    plugin.Run(rate);
    EXPECT_EQ(memory[0], speech[0]);
    EXPECT_EQ(memory[1], expected[1]);
}

TEST_F(Lv2Test, ControlsActWithTheBlockAndNoNumberDoesHarm)
{
    constexpr float nan = std::numeric_limits<float>::quiet_NaN();
    constexpr float infinite = std::numeric_limits<float>::infinity();
    const struct {
        float port;
        float strength; // that it should amount to
    } cases[] = {{0, 0}, {8, 8}, {1e30F, 10}, {-infinite, 0}, {infinite, 10}, {nan, 5}};
    for (const auto& [port, strength] : cases) {
        SCOPED_TRACE(port);
        Lv2Host::Instance plugin("mono", 1, rate, &features);
        plugin.ConnectControls();
        plugin.controls[Lv2Host::Strength] = port;
        Audio audio = Speech(1);
        plugin.Run(audio, 4096);
        EXPECT_EQ(audio, Expected(Speech(1), strength));
    }
    Lv2Host::Instance plugin("mono", 1, rate, &features);
    plugin.ConnectControls();
    plugin.controls[Lv2Host::Enabled] = nan;
    Audio audio = Speech(1);
    plugin.Run(audio, 4096);
    EXPECT_EQ(audio, Expected(Speech(1)));
}

TEST_F(Lv2Test, RatesThatAreNoneDoNoHarm)
{
    for (const double sampleRate : {0.0, -1.0, 1e300, std::nan("")}) {
        Lv2Host::Instance plugin("mono", 1, sampleRate, &features);
        ASSERT_TRUE(plugin);
        Audio audio = Speech(1);
        plugin.Run(audio, 4096);
        for (const float sample : audio[0]) {
            ASSERT_TRUE(std::isfinite(sample));
        }
    }
}

TEST_F(Lv2Test, AStateBringsBackWhatHasNoPortAndPortsHaveTheLastWord)
{
    Lv2Host::Instance plugin("mono", 1, rate, &features);
    plugin.ConnectControls();
    // While audio runs, what a state sets waits for the next block.
    Audio silence(1, std::vector<float>(1024));
    plugin.Run(silence, 256);
    const float latency = plugin.controls[Lv2Host::Latency];

    // A session in which "Latency Scaling" is at its end and "Strength" at 0, made by the module.
    TestHost::Instance direct(rate, 1);
    direct.SetElement(TestHost::ElementLatencyScaling, 0.0F);
    const std::vector<uint8_t> chunk = Contract::MakeState([](TestHost::Instance& instance) {
        instance.SetElement(TestHost::ElementLatencyScaling, 0.0F);
        instance.Set(TestHost::Strength, 0.0F);
    });
    ASSERT_FALSE(chunk.empty());
    std::optional<Saved> saved;
    ASSERT_EQ(plugin.Save(saved), LV2_STATE_SUCCESS);
    EXPECT_EQ(saved->type, features.Map(LV2_ATOM__Chunk));
    saved->bytes = chunk;

    ASSERT_EQ(plugin.Restore(saved), LV2_STATE_SUCCESS);
    plugin.Run(silence, 256);
    EXPECT_LT(plugin.controls[Lv2Host::Latency], latency);
    EXPECT_EQ(plugin.controls[Lv2Host::Latency], static_cast<float>(direct.Latency(0)));
    plugin.Activate();
    Audio expected = Speech(1);
    direct.Run(expected, 512);
    Audio audio = Speech(1);
    plugin.Run(audio, 512);
    EXPECT_EQ(audio, expected);
}

TEST_F(Lv2Test, WhatIsNoStateIsRefusedAndChangesNothing)
{
    Lv2Host::Instance plugin("mono", 1, rate, &features);
    plugin.ConnectControls();
    plugin.controls[Lv2Host::Strength] = 8.0F;
    plugin.Run(0);
    std::optional<Saved> good;
    ASSERT_EQ(plugin.Save(good), LV2_STATE_SUCCESS);
    const Saved cut = {good->key, good->type, {good->bytes.begin(), good->bytes.end() - 1}};
    const struct {
        const char* name;
        std::optional<Saved> saved;
        LV2_State_Status status;
    } cases[] = {
        {"no property", std::nullopt, LV2_STATE_ERR_NO_PROPERTY},
        {"another type", Saved{good->key, 0, good->bytes}, LV2_STATE_ERR_BAD_TYPE},
        {"cut off", cut, LV2_STATE_ERR_UNKNOWN},
    };
    for (const auto& [name, saved, status] : cases) {
        EXPECT_EQ(plugin.Restore(saved), status) << name;
        std::optional<Saved> after;
        ASSERT_EQ(plugin.Save(after), LV2_STATE_SUCCESS);
        EXPECT_EQ(after->bytes, good->bytes) << name;
    }
}

TEST_F(Lv2Test, SavingAndRestoringWhileAudioRunsLeaveTheSoundAlone)
{
    Lv2Host::Instance plugin("stereo", 2, rate, &features);
    plugin.ConnectControls();
    plugin.Run(0);
    std::optional<Saved> saved;
    ASSERT_EQ(plugin.Save(saved), LV2_STATE_SUCCESS);
    std::atomic<bool> isDone{false};
    std::thread session([&] {
        while (!isDone) {
            std::optional<Saved> again;
            EXPECT_EQ(plugin.Save(again), LV2_STATE_SUCCESS);
            EXPECT_EQ(again->bytes, saved->bytes);
            EXPECT_EQ(plugin.Restore(saved), LV2_STATE_SUCCESS);
        }
    });
    Audio audio = Speech(2);
    plugin.Run(audio, 64);
    isDone = true;
    session.join();
    EXPECT_EQ(audio, Expected(Speech(2)));
}

TEST_F(Lv2Test, WithoutItsModuleAPluginDeclinesAndTheHostsLogSaysWhy)
{
    for (const std::string module : {"/nowhere/module.so", OTHER_MODULE}) {
        SCOPED_TRACE(module);
        features.logged.clear();
        setenv("PUFFGUARD_MODULE", module.c_str(), 1);
        const Lv2Host::Instance plugin("stereo", 2, rate, &features);
        const Lv2Host::Instance silent("stereo", 2, rate, nullptr);
        unsetenv("PUFFGUARD_MODULE");
        EXPECT_FALSE(plugin);
        EXPECT_FALSE(silent);
        ASSERT_EQ(features.logged.size(), 1U);
        EXPECT_NE(features.logged[0].find(module), std::string::npos) << features.logged[0];
    }
}
