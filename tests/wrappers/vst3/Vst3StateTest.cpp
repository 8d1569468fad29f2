// SPDX-License-Identifier: ISC
// What goes into a session and comes back, and what the plug-in tells its host.
#include "tests/support/ModuleHost.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/vst3/support/Vst3Host.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>

using Vst3Host::Changes;
using Vst3Host::Host;

namespace {

constexpr uint32_t strength = 808038898;
constexpr uint32_t bypass = 63163949;

using Values = std::vector<double>;

Values Read(Vst3Host::Plugin& plugin)
{
    Values values;
    for (const v3_param_info& info : plugin.parameters) {
        values.push_back(plugin.controller->GetValue(info.param_id));
    }
    return values;
}

void Set(Vst3Host::Plugin& plugin, const Values& values)
{
    for (size_t i = 0; i < values.size(); ++i) {
        plugin.controller->SetValue(plugin.parameters[i].param_id, values[i]);
    }
}

void RunSilence(Vst3Host::Plugin& plugin)
{
    Vst3Host::Audio silence(2, std::vector<float>(1024));
    plugin.Run(silence, 256);
}

/// A session in which the latency is at its smallest.
std::vector<uint8_t> MakeQuickSession()
{
    TestHost::Instance direct(48000, 1);
    direct.SetElement(TestHost::ElementLatencyScaling, 0.0F);
    return direct.SaveState();
}

class Vst3StateTest : public testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_NE(TestHost::Entry(), nullptr); }
    ~Vst3StateTest() override { unsetenv("PUFFGUARD_MODULE"); }

    Support::UserFolders folders;
    Host host;
};

} // namespace

TEST_F(Vst3StateTest, ASessionBringsBackAllValuesAndIsSavedTheSameInStreamsOfAnyPieces)
{
    Vst3Host::Plugin plugin;
    const Values values = {0.125, 0.875, 0.25, 1.0};
    Set(plugin, values);
    const std::vector<uint8_t> session = plugin.Save();
    ASSERT_FALSE(session.empty());
    for (const int32_t most : {1, 7, 1000000}) {
        SCOPED_TRACE(most);
        EXPECT_EQ(plugin.Save(most), session);
        Vst3Host::Plugin other(6, 96000);
        EXPECT_EQ(other.Load(session, most), V3_OK);
        EXPECT_EQ(Read(other), values);
        EXPECT_EQ(other.Save(), session);
        // Some hosts tell the controller only.
        Vst3Host::Plugin third(1);
        Vst3Host::Stream stream(session, most);
        EXPECT_EQ(third.controller->SetComponentState(&stream), V3_OK);
        EXPECT_EQ(Read(third), values);
    }
}

TEST_F(Vst3StateTest, TheBypassThatTheAudioSideHasHeardOfIsSaved)
{
    for (const double value : {1.0, 0.0}) {
        Vst3Host::Plugin plugin;
        plugin.controller->SetValue(bypass, 1.0 - value);
        plugin.Start();
        RunSilence(plugin);
        Changes changes;
        changes.Add(bypass, {{0, value}});
        changes.Add(strength, {{0, 0.25}});
        EXPECT_EQ(plugin.Flush(changes), V3_OK);
        const std::vector<uint8_t> session = plugin.Save();
        Vst3Host::Plugin other;
        ASSERT_EQ(other.Load(session), V3_OK);
        EXPECT_EQ(other.controller->GetValue(bypass), value);
        EXPECT_EQ(other.controller->GetValue(strength), 0.25);
    }
}

TEST_F(Vst3StateTest, AStreamThatIsTooLongOrFullFails)
{
    Vst3Host::Plugin plugin;
    const std::vector<uint8_t> session = plugin.Save();
    EXPECT_EQ(plugin.Load(std::vector<uint8_t>((size_t{64} << 20U) + 1)), V3_FALSE);
    EXPECT_EQ(plugin.Save(), session);
    for (const size_t room : {size_t{0}, session.size() - 1}) {
        Vst3Host::Stream stream;
        stream.room = room;
        EXPECT_NE(plugin.component->GetState(&stream), V3_OK);
    }
}

TEST_F(Vst3StateTest, ANewLatencyIsToldOnceAndOnTheUiThread)
{
    for (const bool hasRunLoop : {true, false}) {
        SCOPED_TRACE(hasRunLoop);
        Host told;
        told.hasRunLoop = hasRunLoop;
        Vst3Host::Plugin plugin(2, 48000, &told);
        plugin.Start();
        RunSilence(plugin);
        const uint32_t former = plugin.processor->GetLatencySamples();
        ASSERT_EQ(plugin.Load(MakeQuickSession()), V3_OK);
        // The module's own timer takes the news over, some time.
        for (int round = 0; round < 100000 && told.heard.empty(); ++round) {
            std::thread audio([&] { RunSilence(plugin); });
            audio.join();
            if (hasRunLoop) {
                told.Tick();
            } else {
                plugin.controller->GetValue(strength);
            }
        }
        EXPECT_EQ(
            told.heard,
            std::vector<std::string>{"restart " + std::to_string(V3_RESTART_LATENCY_CHANGED)});
        EXPECT_EQ(told.lastThread, std::this_thread::get_id());
        EXPECT_LT(plugin.processor->GetLatencySamples(), former);
        told.Tick();
        plugin.controller->GetValue(strength);
        EXPECT_EQ(told.heard.size(), 1U);
    }
}

TEST_F(Vst3StateTest, ALatencyThatTheHostHasNotAskedForIsNoNews)
{
    Vst3Host::Plugin plugin(2, 48000, &host);
    ASSERT_EQ(plugin.Load(MakeQuickSession()), V3_OK);
    EXPECT_EQ(plugin.Setup(96000), V3_OK);
    host.Tick();
    EXPECT_TRUE(host.heard.empty());
}

TEST_F(Vst3StateTest, NothingOfTheHostIsKeptBeyondTheEnd)
{
    {
        Vst3Host::Plugin plugin(2, 48000, &host);
        EXPECT_EQ(host.timers.size(), 1U);
        EXPECT_GT(host.CountReferences(), 0U);
        Host another;
        EXPECT_EQ(plugin.controller->SetComponentHandler(another.Get()), V3_OK);
        EXPECT_TRUE(another.timers.empty());
        EXPECT_EQ(plugin.controller->SetComponentHandler(nullptr), V3_OK);
        EXPECT_EQ(another.CountReferences(), 0U);
        Vst3Host::Held<Vst3Host::ITimerHandler> kept(host.timers[0]);
        kept->AddRef();
        EXPECT_EQ(plugin.component->Terminate(), V3_OK);
        EXPECT_TRUE(host.timers.empty());
        EXPECT_EQ(host.CountReferences(), 0U);
        kept->OnTimer();
        EXPECT_EQ(plugin.component->Initialize(host.Get()), V3_OK);
        EXPECT_EQ(host.timers.size(), 1U);
    }
    EXPECT_TRUE(host.timers.empty());
    EXPECT_EQ(host.CountReferences(), 0U);
}

TEST_F(Vst3StateTest, TheHandlersRunLoopGoesWithTheHandler)
{
    Host another;
    Vst3Host::Plugin plugin;
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(plugin.controller->SetComponentHandler(host.Get()), V3_OK);
        EXPECT_EQ(host.timers.size(), 1U);
        EXPECT_EQ(plugin.controller->SetComponentHandler(another.Get()), V3_OK);
        EXPECT_EQ(host.CountReferences(), 0U);
        EXPECT_EQ(another.timers.size(), 1U);
        EXPECT_EQ(plugin.controller->SetComponentHandler(nullptr), V3_OK);
        EXPECT_TRUE(another.timers.empty());
        EXPECT_EQ(another.CountReferences(), 0U);
        // Another life: the context's run loop stays when the handler goes.
        EXPECT_EQ(plugin.controller->SetComponentHandler(host.Get()), V3_OK);
        EXPECT_EQ(plugin.component->Terminate(), V3_OK);
        EXPECT_EQ(plugin.component->Initialize(another.Get()), V3_OK);
        EXPECT_EQ(plugin.controller->SetComponentHandler(nullptr), V3_OK);
        EXPECT_EQ(another.timers.size(), 1U);
        EXPECT_EQ(plugin.component->Terminate(), V3_OK);
        EXPECT_EQ(plugin.component->Initialize(nullptr), V3_OK);
    }
}

TEST_F(Vst3StateTest, WhatTheUserDoesReachesTheHandlerInOrder)
{
    setenv("PUFFGUARD_MODULE", FAKE_MODULE, 1);
    Vst3Host::Plugin plugin(2, 48000, &host);
    ASSERT_TRUE(plugin);
    const uint32_t id = plugin.parameters.at(0).param_id;
    EXPECT_EQ(plugin.processor->GetLatencySamples(), 100U);
    plugin.controller->SetValue(id, 0.5);
    const std::string name = std::to_string(id);
    const std::vector<std::string> expected = {
        "begin " + name, "perform " + name + " 0.500000", "end " + name, "dirty 1", "restart 8"};
    EXPECT_EQ(host.heard, expected);
}

TEST_F(Vst3StateTest, WhatComesUpOnAnotherThreadWaitsForTheUiThread)
{
    setenv("PUFFGUARD_MODULE", FAKE_MODULE, 1);
    Vst3Host::Plugin plugin(2, 48000, &host);
    ASSERT_TRUE(plugin);
    EXPECT_EQ(plugin.processor->GetLatencySamples(), 100U);
    Changes changes;
    changes.Add(plugin.parameters.at(0).param_id, {{0, 0.5}});
    std::thread audio([&] {
        plugin.Flush(changes);
        plugin.controller->GetValue(plugin.parameters[0].param_id); // some hosts do
    });
    audio.join();
    EXPECT_TRUE(host.heard.empty());
    host.Tick();
    const std::vector<std::string> expected = {
        "dirty 1",
        "restart " + std::to_string(V3_RESTART_LATENCY_CHANGED | V3_RESTART_PARAM_VALUES_CHANGED)};
    EXPECT_EQ(host.heard, expected);
    EXPECT_EQ(plugin.controller->GetValue(plugin.parameters[0].param_id), 0.5);
}

TEST_F(Vst3StateTest, WithoutAHandlerTheUsersValuesComeWithTheNextBlock)
{
    setenv("PUFFGUARD_MODULE", FAKE_MODULE, 1);
    Vst3Host::Plugin plugin;
    ASSERT_TRUE(plugin);
    const uint32_t id = plugin.parameters.at(0).param_id;
    plugin.controller->SetValue(id, 0.5);
    for (const bool isFull : {true, false}) {
        Changes output;
        output.isFull = isFull;
        plugin.Process(nullptr, nullptr, 0, {nullptr, &output, nullptr});
        ASSERT_EQ(output.queues.size(), isFull ? 0U : 1U);
        if (!isFull) {
            EXPECT_EQ(output.queues[0].id, id);
            EXPECT_EQ(output.queues[0].points.at(0).value, 0.5)
                << "the audio side is still at 0.75";
        }
    }
    Changes output;
    plugin.Process(nullptr, nullptr, 64, {nullptr, &output, nullptr});
    EXPECT_TRUE(output.queues.empty()) << "told once";
}
