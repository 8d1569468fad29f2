// SPDX-License-Identifier: ISC
// What a new stream format does to the state of an instance and to its editor.
#include "frameworks/plugincore/dispatch/Entry.h"
#include "tests/frameworks/plugincore/instance/PluginRig.h"

#include <thread>

namespace {

using namespace PluginRig;
using PluginFormatTest = StateFixture;

} // namespace

TEST_F(PluginFormatTest, ANewFormatOnTheEditorsThreadClosesAndReopensIt)
{
    Create();
    SetGain(0.25F);
    TestEditor editor(factory.events);
    plugin->AttachEditor(&editor);
    factory.events.clear();
    plugin->SetStreamFormat(96000.0F, 1);
    EXPECT_EQ(Get(), 0.25F);
    EXPECT_EQ(Get(Gain, Side::UI), 0.25F);
    EXPECT_EQ(Count(HostOpcodeParamEvent), 0U);
    EXPECT_TRUE(factory.events.starts_with("save before close ")) << factory.events;
    EXPECT_EQ(factory.events.find("begin"), std::string::npos) << "it is closed while values load";
    EXPECT_NE(factory.events.find("after reopen "), std::string::npos) << factory.events;
    EXPECT_EQ(plugin->GetEditor(), &editor);
    plugin->AttachEditor(nullptr);
}

TEST_F(PluginFormatTest, ANewFormatOnAnotherThreadLeavesTheEditorToTheTick)
{
    factory.definition.timerPeriod = 1;
    Create();
    TestEditor editor(factory.events);
    {
        const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetUILock());
        SetGain(0.25F);
        plugin->AttachEditor(&editor);
        factory.events.clear();
    }
    std::thread([&] { plugin->SetStreamFormat(96000.0F, 1); }).join();
    while (!editor.attached) { // ends by the test's time limit when no tick ever comes
        std::this_thread::yield();
    }
    const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetUILock());
    EXPECT_EQ(Get(), 0.25F);
    EXPECT_NE(factory.events.find("before detach "), std::string::npos) << factory.events;
    EXPECT_NE(factory.events.find("attach begin loaded history end "), std::string::npos)
        << factory.events;
    plugin->AttachEditor(nullptr);
}

// Between the format change and the tick that loads what it saved.
TEST_F(PluginFormatTest, WhatIsSetOrSavedMeanwhileIsNotOverrunByTheSavedState)
{
    Create(); // without ticks
    TestEditor editor(factory.events);
    const auto changeFormat = [&](float rate) {
        SetGain(0.25F);
        std::thread([&] { plugin->AttachEditor(&editor); }).join();
        plugin->SetStreamFormat(rate, 1);
    };
    changeFormat(96000.0F);
    EXPECT_EQ(Get(), 0.1F) << "still to be loaded";
    const String text = TextOf(Save());
    EXPECT_TRUE(text.Find("2.5")) << text.c_str();

    changeFormat(48000.0F);
    SetGain(0.75F);
    plugin->AttachEditor(nullptr); // does what the tick would do
    EXPECT_EQ(Get(), 0.75F);

    changeFormat(96000.0F);
    EXPECT_FALSE(LoadText("no legacy", 0)); // what can't be loaded replaces nothing
    EXPECT_TRUE(LoadText("no JSON"));
    EXPECT_EQ(Get(), 0.25F);

    changeFormat(88200.0F);
    ASSERT_TRUE(LoadText(State("7", Version1)));
    plugin->AttachEditor(nullptr);
    EXPECT_FLOAT_EQ(Get(), 0.7F);
    factory.boxLivesOn = true; // then nothing is left to be loaded that automation could lose to
    changeFormat(48000.0F);
    {
        const Util::CriticalSectionGuard guard(plugin->GetProcessLock());
        plugin->SetAutomatableParam(Side::Process, {0, 0.9F});
    }
    plugin->AttachEditor(nullptr);
    EXPECT_FLOAT_EQ(Get(), 0.9F);
}

TEST_F(PluginFormatTest, ReopeningTheEditorLeavesNothingOfAnEarlierFormatToTheTick)
{
    Create(); // without ticks
    TestEditor editor(factory.events);
    SetGain(0.25F);
    plugin->AttachEditor(&editor);
    std::thread([&] { plugin->SetStreamFormat(96000.0F, 1); }).join();
    plugin->SetStreamFormat(48000.0F, 1);
    EXPECT_EQ(Get(), 0.25F) << "nothing is left to a tick";
    EXPECT_EQ(plugin->GetEditor(), &editor);
    plugin->AttachEditor(nullptr);
}

// Or a host callback of the UI side that comes back for the processing lock would never get it.
TEST_F(PluginFormatTest, TheProcessingSideWaitsForTheUISideWithoutItsOwnLock)
{
    for (const uint32_t selector : {SelectorSetStreamFormat, SelectorTerminate}) {
        Create();
        std::atomic<bool> started = false;
        std::thread other;
        {
            const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetUILock());
            other = std::thread([&] {
                StreamFormatRecord record{96000.0F, 1};
                started = true;
                DispatchEntryCall(factory, PLUGIN_CORE_MAGIC, selector, 0, plugin.get(), &record);
            });
            while (!started) {
                std::this_thread::yield();
            }
            for (int turn = 0; turn < 20'000; ++turn) { // long enough for the other to get there
                const Util::CriticalSectionGuard processGuard(plugin->GetProcessLock());
                std::this_thread::yield();
            }
        }
        other.join();
    }
}
