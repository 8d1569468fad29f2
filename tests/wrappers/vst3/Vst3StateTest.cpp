// SPDX-License-Identifier: ISC
// What goes into a session and comes back, and what the plug-in reports to its host.
#include "tests/contract/support/Takes.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/wrappers/vst3/support/Vst3Host.h"

#include <gtest/gtest.h>

#include <thread>

using Vst3Host::Changes;
using Vst3Host::Host;
using Vst3Host::Plugin;
using Vst3Host::Id::Bypass;
using Vst3Host::Id::Strength;

namespace {

class Vst3StateTest : public testing::Test {
protected:
    static void SetUpTestSuite() { ASSERT_NE(TestHost::Entry(), nullptr); }
    ~Vst3StateTest() override { unsetenv("PUFFGUARD_MODULE"); }

    /// A plug-in that a user plays with, and `host`.
    std::unique_ptr<Plugin> MakeFake(std::shared_ptr<Host> itsHost)
    {
        setenv("PUFFGUARD_MODULE", FAKE_MODULE, 1);
        auto plugin = std::make_unique<Plugin>(2, 48000, std::move(itsHost));
        EXPECT_TRUE(*plugin);
        return plugin;
    }

    Support::UserFolders folders;
    const std::shared_ptr<Host> host = std::make_shared<Host>();
};

} // namespace

TEST_F(Vst3StateTest, TheControllerAloneMayTakeASession)
{
    Plugin plugin;
    plugin.SetParameter(TestHost::Strength, 0.25F);
    plugin.SetParameter(TestHost::GlobalBypass, 1.0F);
    const std::vector<uint8_t> session = plugin.Save();
    Plugin other(1);
    EXPECT_EQ(other.LoadController(session), V3_OK);
    EXPECT_EQ(other.Save(), session);
}

TEST_F(Vst3StateTest, TheBypassThatTheAudioSideHasHeardOfIsSaved)
{
    for (const double value : {1.0, 0.0}) {
        Plugin plugin;
        plugin.controller->SetValue(Bypass, 1.0 - value);
        plugin.Start();
        Contract::PlaySilence(plugin, 2, 1024);
        Changes changes;
        changes.Add(Bypass, {{0, value}});
        changes.Add(Strength, {{0, 0.25}});
        EXPECT_EQ(plugin.Flush(changes), V3_OK);
        Plugin other;
        ASSERT_TRUE(other.Load(plugin.Save()));
        EXPECT_EQ(other.controller->GetValue(Bypass), value);
        EXPECT_EQ(other.controller->GetValue(Strength), 0.25);
    }
}

TEST_F(Vst3StateTest, AStreamThatIsTooLongOrFullFails)
{
    Plugin plugin;
    const std::vector<uint8_t> session = plugin.Save();
    EXPECT_EQ(plugin.LoadComponent(std::vector<uint8_t>((size_t{64} << 20U) + 1)), V3_FALSE);
    EXPECT_EQ(plugin.Save(), session);
    for (const size_t room : {size_t{0}, session.size() - 1}) {
        Vst3Host::Stream stream;
        stream.room = room;
        EXPECT_NE(plugin.component->GetState(&stream), V3_OK);
    }
}

TEST_F(Vst3StateTest, WithoutARunLoopANewLatencyIsReportedOnceWhenTheUiThreadCalls)
{
    host->hasRunLoop = false;
    Plugin plugin(2, 48000, host);
    plugin.Start();
    Contract::PlaySilence(plugin, 2, 1024);
    const uint32_t former = plugin.GetLatency();
    ASSERT_EQ(plugin.LoadComponent(plugin.MakeSession(Contract::MakeShortestState())), V3_OK);
    // The module's own timer takes the news over, some time.
    for (int round = 0; round < 100000 && host->heard.empty(); ++round) {
        std::thread audio([&] { Contract::PlaySilence(plugin, 2, 1024); });
        audio.join();
        plugin.controller->GetValue(Strength);
    }
    plugin.controller->GetValue(Strength);
    EXPECT_LT(plugin.GetLatency(), former);
    EXPECT_EQ(plugin.CountLatencyReports(), 1U);
    EXPECT_EQ(host->heard.size(), 1U);
    EXPECT_EQ(host->lastThread, std::this_thread::get_id());
}

TEST_F(Vst3StateTest, ALatencyThatTheHostHasNotAskedForIsNoNews)
{
    Plugin plugin(2, 48000, host);
    ASSERT_TRUE(plugin.Load(plugin.MakeSession(Contract::MakeShortestState())));
    EXPECT_EQ(plugin.Setup(96000), V3_OK);
    host->Tick();
    EXPECT_TRUE(host->heard.empty());
}

TEST_F(Vst3StateTest, NothingOfTheHostIsKeptBeyondTheEnd)
{
    {
        Plugin plugin(2, 48000, host);
        EXPECT_EQ(host->timers.size(), 1U);
        EXPECT_GT(host->CountReferences(), 0U);
        Host another;
        EXPECT_EQ(plugin.controller->SetComponentHandler(another.Get()), V3_OK);
        EXPECT_TRUE(another.timers.empty());
        EXPECT_EQ(plugin.controller->SetComponentHandler(nullptr), V3_OK);
        EXPECT_EQ(another.CountReferences(), 0U);
        Vst3Host::Held<Vst3Host::ITimerHandler> kept(host->timers[0]);
        kept->AddRef();
        EXPECT_EQ(plugin.component->Terminate(), V3_OK);
        EXPECT_TRUE(host->timers.empty());
        EXPECT_EQ(host->CountReferences(), 0U);
        kept->OnTimer();
        EXPECT_EQ(plugin.component->Initialize(host->Get()), V3_OK);
        EXPECT_EQ(host->timers.size(), 1U);
    }
    EXPECT_TRUE(host->timers.empty());
    EXPECT_EQ(host->CountReferences(), 0U);
}

TEST_F(Vst3StateTest, TheHandlersRunLoopGoesWithTheHandler)
{
    Host another;
    Plugin plugin;
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(plugin.controller->SetComponentHandler(host->Get()), V3_OK);
        EXPECT_EQ(host->timers.size(), 1U);
        EXPECT_EQ(plugin.controller->SetComponentHandler(another.Get()), V3_OK);
        EXPECT_EQ(host->CountReferences(), 0U);
        EXPECT_EQ(another.timers.size(), 1U);
        EXPECT_EQ(plugin.controller->SetComponentHandler(nullptr), V3_OK);
        EXPECT_TRUE(another.timers.empty());
        EXPECT_EQ(another.CountReferences(), 0U);
        // Another life: the context's run loop stays when the handler goes.
        EXPECT_EQ(plugin.controller->SetComponentHandler(host->Get()), V3_OK);
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
    const auto made = MakeFake(host);
    Plugin& plugin = *made;
    const uint32_t id = plugin.parameters.at(0).param_id;
    EXPECT_EQ(plugin.processor->GetLatencySamples(), 100U);
    plugin.controller->SetValue(id, 0.5);
    const std::string name = std::to_string(id);
    const std::vector<std::string> gesture = {
        "begin " + name, "perform " + name + " 0.500000", "end " + name, "dirty 1"};
    std::vector<std::string> expected = gesture;
    expected.emplace_back("restart 8");
    EXPECT_EQ(host->heard, expected);

    // The host hasn't looked at the latency since, and yet a restart would be for nothing.
    host->heard.clear();
    plugin.controller->SetValue(id, 0.5);
    EXPECT_EQ(host->heard, gesture);
}

TEST_F(Vst3StateTest, WhatComesUpOnAnotherThreadWaitsForTheUiThread)
{
    const auto made = MakeFake(host);
    Plugin& plugin = *made;
    EXPECT_EQ(plugin.processor->GetLatencySamples(), 100U);
    Changes changes;
    changes.Add(plugin.parameters.at(0).param_id, {{0, 0.5}});
    std::thread audio([&] {
        plugin.Flush(changes);
        plugin.controller->GetValue(plugin.parameters[0].param_id); // some hosts do
    });
    audio.join();
    EXPECT_TRUE(host->heard.empty());
    host->Tick();
    const std::vector<std::string> expected = {
        "dirty 1",
        "restart " + std::to_string(V3_RESTART_LATENCY_CHANGED | V3_RESTART_PARAM_VALUES_CHANGED)};
    EXPECT_EQ(host->heard, expected);
    EXPECT_EQ(plugin.controller->GetValue(plugin.parameters[0].param_id), 0.5);
}

TEST_F(Vst3StateTest, WithoutAHandlerTheUsersValuesComeWithTheNextBlock)
{
    const auto made = MakeFake(nullptr);
    Plugin& plugin = *made;
    const uint32_t id = plugin.parameters.at(0).param_id;
    plugin.controller->SetValue(id, 0.5);
    for (const bool isFull : {true, false}) {
        Changes output;
        output.isFull = isFull;
        plugin.Send(nullptr, nullptr, 0, {nullptr, &output, nullptr});
        ASSERT_EQ(output.queues.size(), isFull ? 0U : 1U);
        if (!isFull) {
            EXPECT_EQ(output.queues[0].id, id);
            EXPECT_EQ(output.queues[0].points.at(0).value, 0.5)
                << "the audio side is still at 0.75";
        }
    }
    Changes output;
    plugin.Send(nullptr, nullptr, 64, {nullptr, &output, nullptr});
    EXPECT_TRUE(output.queues.empty()) << "told once";
}
