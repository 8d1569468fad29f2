// SPDX-License-Identifier: ISC
// What the host and the editor hear of what the user does, with the product's own elements; and
// what is a preference of the user in an instance.
#include "frameworks/plugincore/controller/GrabbedParamHandle.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "restoration/plugin_LM_Puffguard/PluginFactoryImpl.h"
#include "tests/frameworks/plugincore/instance/TestDefinition.h"
#include "tests/frameworks/plugincore/instance/TestEditor.h"
#include "tests/support/FlushHook.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <sstream>
#include <thread>

namespace {

using Controller::BoolParam;
using Controller::FloatParam;
using Handle = Controller::GrabbedParamHandle<float>;

struct Instance {
    explicit Instance(const char* options = "")
    {
        plugin = std::make_unique<Plugin>(LMPuffguard::GetPluginFactory(),
                                          MakeSetup(Answer, this, options));
    }
    ~Instance() { plugin.reset(); } // its timer speaks to the rest

    static uint32_t
    Answer(uint32_t /*magic*/, uint32_t opcode, uint32_t context, void* refcon, void* data)
    {
        auto& calls = static_cast<Instance*>(refcon)->calls;
        if (opcode == HostOpcodeParamEvent) {
            const auto& event = *static_cast<const ParamEventRecord*>(data);
            std::ostringstream text;
            text << event.kind << " of " << event.index << " at " << event.value << "; ";
            calls += text.str();
        } else if (opcode == HostOpcodeDirtyState) {
            EXPECT_EQ(context, 1U);
            EXPECT_EQ(data, nullptr);
            calls += "dirty; ";
        }
        return PluginCoreUnsupported;
    }

    template <typename Param>
    Param& Get(const char* path)
    {
        const std::any found = plugin->GetSet().ValueForKeyPath(path);
        return *std::any_cast<Param*>(found);
    }
    std::string Take() { return std::exchange(calls, {}); }

    std::string calls;
    std::unique_ptr<Plugin> plugin;
};

struct GesturesTest : testing::Test {
    const Support::UserFolders folders;
    Instance instance;
    TestEditor editor{instance.calls};
    Plugin& plugin = *instance.plugin;
    FloatParam& sensitivity = instance.Get<FloatParam>("PuffGuard.Sensitivity");
    FloatParam& strength = instance.Get<FloatParam>("PuffGuard.Strength");
};

TEST_F(GesturesTest, EveryAutomatableParameterIsReportedWithTheEditorFirst)
{
    plugin.AttachEditor(&editor);
    sensitivity.SetValue(10.0F);
    EXPECT_EQ(instance.Take(),
              "0 of 0 at 0.5; editor Puffguard.Sensitivity; 1 of 0 at 1; 2 of 0 at 1; dirty; ");
    strength.SetValue(0.0F);
    EXPECT_EQ(instance.Take(),
              "0 of 1 at 0.5; editor Puffguard.Strength; 1 of 1 at 0; 2 of 1 at 0; dirty; ");
    // The element's own name leads to the same parameter.
    instance.Get<FloatParam>("Puffguard.Upper Repair Frequency").SetValue(50.0F);
    EXPECT_NE(instance.Take().find("1 of 2 at 0; 2 of 2 at 0; dirty; "), std::string::npos);
    instance.Get<BoolParam>("Global.Global Bypass").SetValue(true);
    EXPECT_EQ(
        instance.Take(),
        "0 of 3 at 0; editor Global.Global Bypass; 1 of 3 at 1; 2 of 3 at 1; "); // it is saved
                                                                                 // nowhere
    sensitivity.SetValue(10.0F); // a click that changes nothing
    EXPECT_EQ(instance.Take(), "0 of 0 at 1; 2 of 0 at 1; ");
}

TEST_F(GesturesTest, OneDragIsOneTouchAndOneActionHoweverOftenItIsHeld)
{
    plugin.AttachEditor(&editor);
    {
        const Handle drag(sensitivity);
        const Handle wheel(sensitivity);
        sensitivity.SetValue(6.0F);
        {
            const Handle linked(strength);
            strength.SetValue(6.0F);
        }
        sensitivity.SetValue(7.0F);
    }
    EXPECT_EQ(instance.Take(),
              "0 of 0 at 0.5; editor Puffguard.Sensitivity; 1 of 0 at 0.6; 0 of 1 at 0.5; "
              "editor Puffguard.Strength; 1 of 1 at 0.6; 2 of 1 at 0.6; "
              "editor Puffguard.Sensitivity; 1 of 0 at 0.7; 2 of 0 at 0.7; dirty; ");
}

TEST_F(GesturesTest, WithoutAnEditorThereAreChangesButNoTouches)
{
    sensitivity.SetValue(6.0F);
    EXPECT_EQ(instance.Take(), "1 of 0 at 0.6; dirty; ");
    plugin.ParamReleased(*plugin.GetSet().GetMainElement(), "Sensitivity"); // never held
    {
        const Handle early(sensitivity);
        plugin.AttachEditor(&editor);
    }
    EXPECT_EQ(instance.Take(), ""); // no end of what the host hasn't seen begin
    {
        const Handle late(sensitivity);
        plugin.AttachEditor(nullptr);
    }
    EXPECT_EQ(instance.Take(), "0 of 0 at 0.6; 2 of 0 at 0.6; ");
    // Nor does a new format leave a touch open, though it reports nothing else.
    plugin.AttachEditor(&editor);
    auto drag = std::make_unique<Handle>(sensitivity);
    editor.onClose = [&drag] { drag.reset(); };
    plugin.SetStreamFormat(96000.0F, 1);
    EXPECT_EQ(instance.Take(), "0 of 0 at 0.6; close 2 of 0 at 0.6; reopen ");
}

TEST_F(GesturesTest, WhatIsNotAutomatableChangesTheStateOnlyIfItIsSaved)
{
    plugin.AttachEditor(&editor);
    instance.Get<FloatParam>("PuffGuard.Latency Scaling").SetValue(0.5F);
    EXPECT_EQ(instance.Take(), "editor Puffguard.Latency Scaling; dirty; ");
    instance.Get<BoolParam>("Global.Meter Enable").SetValue(false);
    instance.Get<FloatParam>("Global.Selection Feathering").SetValue(7.0F);
    EXPECT_EQ(instance.Take(), "editor Global.Meter Enable; editor Global.Selection Feathering; ");
}

TEST_F(GesturesTest, AnActionOfManyChangesIsReportedOnce)
{
    {
        const GestureReport::UserAction action(plugin.GetGestures());
        const GestureReport::UserAction within(plugin.GetGestures());
        sensitivity.SetValue(6.0F);
        strength.SetValue(6.0F);
    }
    EXPECT_EQ(instance.Take(), "1 of 0 at 0.6; 1 of 1 at 0.6; dirty; ");
    {
        const GestureReport::UserAction action(plugin.GetGestures());
    }
    EXPECT_EQ(instance.Take(), "");
    {
        GestureReport::UserAction action(plugin.GetGestures());
        action.MarkChanged();
    }
    EXPECT_EQ(instance.Take(), "dirty; ");
}

TEST_F(GesturesTest, PreferencesFollowFromInstanceToInstanceAndThroughANewFormat)
{
    Instance second;
    second.plugin->Initialize(); // from now on it has a tick
    plugin.SetStreamFormat(96000.0F, 1);
    instance.Get<BoolParam>("Global.Meter Enable").SetValue(false);
    EXPECT_FALSE(Instance().Get<BoolParam>("Global.Meter Enable").GetValue());
    for (bool follows = false; !follows; std::this_thread::yield()) { // the test's limit ends it
        const Util::CriticalSectionGuard guard(second.plugin->GetThreadController().GetUILock());
        follows = !second.Get<BoolParam>("Global.Meter Enable").GetValue();
    }
    EXPECT_EQ(second.Take(), "");
}

TEST_F(GesturesTest, ADraggedPreferenceIsWrittenOnceAtItsEnd)
{
    constexpr const char* Key = "Params.Global.Float.Selection Feathering";
    auto& feathering = instance.Get<FloatParam>("Global.Selection Feathering");
    plugin.Initialize(); // the tick writes nothing in between
    Util::CriticalSection& lock = plugin.GetThreadController().GetUILock();
    const Util::CriticalSectionGuard guard(lock);
    const int before = Support::flushCount;
    {
        const Handle drag(feathering);
        for (int i = 1; i <= 20; ++i) {
            feathering.SetValue(static_cast<float>(i));
            EXPECT_EQ(plugin.GetConfigFile().ReadFloat(Key, 0.0F), static_cast<float>(i));
        }
        lock.Leave();
        std::this_thread::sleep_for(std::chrono::milliseconds(250));
        lock.Enter();
        EXPECT_EQ(Support::flushCount, before);
    }
    EXPECT_EQ(Support::flushCount, before + 2) << "the file and its folder";
    plugin.ParamReleased(*plugin.GetSet().GetElements().at("Global"), "Selection Feathering");
    {
        const Handle drag(feathering);
        feathering.SetValue(30.0F);
        plugin.SetStreamFormat(96000.0F, 1); // its elements are let go of
        EXPECT_EQ(Support::flushCount, before + 4);
    }
    feathering.SetValue(40.0F);
    EXPECT_EQ(Support::flushCount, before + 6);
}

TEST_F(GesturesTest, ATickWritesWhatCouldNotBeWritten)
{
    plugin.Initialize();
    Support::flushError = ENOSPC;
    plugin.GetConfigFile().WriteInt("x", 1);
    const std::string file = folders.Home() / "config/Norvane/LM6Pfgd.json";
    EXPECT_FALSE(std::filesystem::exists(file));
    Support::flushError = 0;
    while (!std::filesystem::exists(file)) { // the test's limit ends it
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

TEST_F(GesturesTest, AnOfflineInstanceNeitherReadsNorWritesPreferences)
{
    instance.Get<BoolParam>("Global.Meter Enable").SetValue(false);
    Instance offline("Lang:en|Offline");
    EXPECT_TRUE(offline.Get<BoolParam>("Global.Meter Enable").GetValue());
    offline.Get<BoolParam>("Global.Animation Enable").SetValue(false);
    EXPECT_FALSE(plugin.GetConfigFile().HasValue("Params.Global.Bool.Animation Enable"));
    EXPECT_FALSE(plugin.GetConfigFile().ReadBool("Params.Global.Bool.Meter Enable", true));
}

} // namespace
