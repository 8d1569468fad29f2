// SPDX-License-Identifier: ISC
// The undo history of the product's instances: what comes back, what the host and the editor hear
// of it, and which files it leaves.
#include "frameworks/plugincore/instance/Plugin.h"

#include "frameworks/plugincore/controller/GrabbedParamHandle.h"
#include "frameworks/plugincore/ui/model/historyfile/HistoryModel.h"
#include "frameworks/qobase/util/TimeText.h"
#include "restoration/plugin/Global.h"
#include "restoration/plugin_LM_Puffguard/PluginFactoryImpl.h"
#include "restoration/ui/dialog/historyfile/HistoryLogic.h"
#include "tests/frameworks/plugincore/instance/PluginRig.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using Side = DSP::Context; // `Context` is a namespace of its own

template <typename Record>
uint32_t Send(Plugin& plugin, uint32_t message, Record& record)
{
    return plugin.HostMessage(Side::UI, {message, sizeof record, &record});
}

void ApplyPreset(Plugin& plugin, const char* name)
{
    PresetRecord record{};
    record.op = PresetOpApply;
    record.name = name;
    EXPECT_EQ(Send(plugin, PLUGIN_CORE_MESSAGE_PRESET, record), PluginCoreSuccess);
    EXPECT_EQ(record.failed, 0) << &record.message[0];
}

class PluginHistoryTest : public testing::Test {
protected:
    // Places in the list of automatable parameters.
    static constexpr uint32_t Sensitivity = 0;
    static constexpr uint32_t Strength = 1;

    std::unique_ptr<Plugin> Make(const char* options = "")
    {
        return std::make_unique<Plugin>(LMPuffguard::GetPluginFactory(),
                                        MakeSetup(&OnHostCall, &opcodes, options));
    }
    static UI::Dialog::HistoryLogic& LogicOf(const Plugin& plugin)
    {
        return dynamic_cast<UI::Dialog::HistoryLogic&>(*plugin.GetHistory());
    }
    static float Get(const Plugin& plugin)
    {
        ParamValueRecord record{Sensitivity, 0};
        plugin.GetAutomatableParam(Side::UI, record);
        return record.value;
    }
    static void Change(Plugin& plugin, float value)
    {
        plugin.SetAutomatableParam(Side::UI, {Sensitivity, value});
        EXPECT_TRUE(plugin.GetHistory()->AddSnapshot("Sensitivity"));
    }
    static HistoryRecord Do(Plugin& plugin, int32_t op, uint32_t index = 0, const char* path = "")
    {
        HistoryRecord record{};
        record.op = op;
        record.index = index;
        record.path = path;
        EXPECT_EQ(Send(plugin, PLUGIN_CORE_MESSAGE_HISTORY, record), PluginCoreSuccess);
        EXPECT_EQ(record.failed != 0, record.message[0] != 0);
        return record;
    }
    static std::string TextOf(const HistoryRecord& record) { return &record.text[0]; }
    static std::string MessageOf(const HistoryRecord& record) { return &record.message[0]; }
    static void Gesture(Plugin& plugin, PluginCoreParamEvent kind, uint32_t index, float value = 0)
    {
        ParamEventRecord event{kind, index, value};
        EXPECT_EQ(Send(plugin, PLUGIN_CORE_MESSAGE_GESTURE, event), PluginCoreSuccess);
    }
    template <typename Param>
    static Param& Control(const Plugin& plugin, const char* path)
    {
        return *std::any_cast<Param*>(plugin.GetSet().ValueForKeyPath(path));
    }
    // What was done, oldest first, of what the message lists; all of it without a count.
    static std::string Texts(Plugin& plugin, std::optional<uint32_t> count = std::nullopt)
    {
        std::string texts;
        const uint32_t end = count ? *count : Do(plugin, HistoryOpList).count;
        for (uint32_t index = 0; index < end; ++index) {
            texts += index > 0 ? "|" : "";
            texts += TextOf(Do(plugin, HistoryOpDescribe, index));
        }
        return texts;
    }
    std::string FileNamed(const std::string& name) const { return user.Home() / ("data/" + name); }

    Support::UserFolders user;
    std::vector<uint32_t> opcodes; // that the host was called with
    std::string events;
    TestEditor editor{events};

private:
    static uint32_t OnHostCall(
        uint32_t /*magic*/, uint32_t opcode, uint32_t /*context*/, void* host, void* /*data*/)
    {
        static_cast<std::vector<uint32_t>*>(host)->push_back(opcode);
        return PluginCoreUnsupported;
    }
};

TEST_F(PluginHistoryTest, AStepBackBringsTheValueBackAndTheHostHearsOfIt)
{
    auto plugin = Make();
    plugin->AttachEditor(&editor);
    const float before = Get(*plugin);
    Change(*plugin, 0.25F);
    plugin->SetAutomatableParam(Side::UI, {Strength, 0.125F});
    Change(*plugin, 0.75F);
    opcodes.clear();
    EXPECT_TRUE(LogicOf(*plugin).StepBack());
    EXPECT_NEAR(Get(*plugin), 0.25F, 1e-6F);
    // Both values by themselves, since the host takes none together, and what the user did as one.
    EXPECT_EQ(opcodes,
              (std::vector<uint32_t>{HostOpcodeAutomationEvent,
                                     HostOpcodeParamEvent,
                                     HostOpcodeParamEvent,
                                     HostOpcodeDirtyState}));
    EXPECT_TRUE(LogicOf(*plugin).StepBack());
    EXPECT_EQ(Get(*plugin), before);
    EXPECT_EQ(LogicOf(*plugin).GetModel().snapshots.size(), 3U);

    // The editor was told once, since it hasn't looked yet.
    EXPECT_EQ(events.find("state "), events.rfind("state ")) << events;
    EXPECT_NE(events.find("state "), std::string::npos) << events;
    events.clear();
    EXPECT_TRUE(plugin->TakeStateChange());
    EXPECT_FALSE(plugin->TakeStateChange());
    EXPECT_TRUE(LogicOf(*plugin).StepForward());
    EXPECT_NE(events.find("state "), std::string::npos) << events;
    plugin->AttachEditor(nullptr);
    plugin->StateChanged();
    EXPECT_FALSE(plugin->TakeStateChange());
}

TEST_F(PluginHistoryTest, TheListReturnsWithTheSession)
{
    auto first = Make();
    first->AttachEditor(&editor);
    Change(*first, 0.25F);
    ASSERT_TRUE(LogicOf(*first).StoreSlot(2));
    // A change without a snapshot: what counts for the file is the state that the host saves last.
    first->SetAutomatableParam(Side::UI, {Sensitivity, 0.123F});
    Util::Bytes chunk(first->GetStateSize());
    ASSERT_TRUE(first->GetChunk(chunk));
    first.reset(); // by a host that doesn't end it first
    const std::string own = FileNamed("Norvane/LM6Pfgd");
    EXPECT_TRUE(std::filesystem::exists(own + "/QoLM6Pfgd.hst"));
    EXPECT_EQ(std::filesystem::status(own).permissions(), std::filesystem::perms(0700));

    auto second = Make();
    ASSERT_TRUE(second->SetChunk(chunk, 1, DSP::SourceHost));
    second->AttachEditor(&editor);
    EXPECT_EQ(LogicOf(*second).GetModel().snapshots.size(), 2U);
    EXPECT_TRUE(LogicOf(*second).RecallSlot(2));
    EXPECT_NEAR(Get(*second), 0.25F, 1e-6F);
    second->AttachEditor(nullptr);
}

TEST_F(PluginHistoryTest, TheDepthIsTheUsersSetting)
{
    auto plugin = Make();
    const DSP::ElementParamEnum depth(*plugin->GetSet().GetGlobalElement(),
                                      DSP::Global::Global::HistoryDepthIndex);
    for (const auto& [setting, longest] : {std::pair{2U, 121U}, {0U, 50U}}) {
        depth.SetValue(setting, Side::UI, DSP::SourceController);
        for (int i = 0; i < 120; ++i) {
            Change(*plugin, 0.5F);
        }
        EXPECT_EQ(LogicOf(*plugin).GetModel().snapshots.size(), longest);
    }
}

TEST_F(PluginHistoryTest, ARendererOfFilesLeavesNone)
{
    auto plugin = Make("Lang:en|Offline");
    Change(*plugin, 0.25F);
    EXPECT_TRUE(LogicOf(*plugin).StepBack());
    HistoryModel model;
    EXPECT_TRUE(plugin->SaveHistory(model));
    plugin->LoadHistory(model);
    EXPECT_EQ(model.snapshots.size(), 1U);
    plugin->Terminate();
    EXPECT_FALSE(std::filesystem::exists(FileNamed("")));
}

TEST_F(PluginHistoryTest, WhatTheUserFinishesBecomesAStepWithoutAnEditor)
{
    const String before = Util::GetPresentTimeText();
    auto plugin = Make();
    auto& sensitivity = Control<Controller::FloatParam>(*plugin, "PuffGuard.Sensitivity");
    sensitivity.SetValue(6.5F);
    sensitivity.SetValue(6.5F); // changes nothing
    {
        const Controller::GrabbedParamHandle<float> drag(sensitivity);
        sensitivity.SetValue(7.0F);
        Control<Controller::FloatParam>(*plugin, "PuffGuard.Strength").SetValue(2.0F); // linked
        sensitivity.SetValue(8.0F);
    }
    Control<Controller::FloatParam>(*plugin, "PuffGuard.Upper Repair Frequency").SetValue(239.6F);
    Control<Controller::BoolParam>(*plugin, "Global.Global Bypass").SetValue(true); // in no state
    ApplyPreset(*plugin, "Factory settings");
    Do(*plugin, HistoryOpResetAll); // there is nothing to reset
    sensitivity.SetValue(1.0F);
    Do(*plugin, HistoryOpResetAll);
    EXPECT_EQ(Texts(*plugin),
              "Initial State|Sensitivity: 6.5|Sensitivity: 8.0|Upper Repair Frequency: 240|"
              "Preset: Factory settings|Sensitivity: 1.0|Reset All");
    const HistoryRecord last = Do(*plugin, HistoryOpDescribe, 6);
    EXPECT_EQ(last.isSelected, 1);
    EXPECT_GE(String(&last.time[0]), before);
    EXPECT_LE(String(&last.time[0]), Util::GetPresentTimeText());

    EXPECT_EQ(TextOf(Do(*plugin, HistoryOpUndo)), "Sensitivity: 1.0");
    EXPECT_EQ(sensitivity.GetValue(), 1.0F);
    Do(*plugin, HistoryOpGoTo, 0);
    EXPECT_EQ(sensitivity.GetValue(), 5.0F); // as it was before the first of them
    EXPECT_EQ(Do(*plugin, HistoryOpUndo).failed, 1);
    Do(*plugin, HistoryOpRedo);
    EXPECT_EQ(sensitivity.GetValue(), 6.5F);
    sensitivity.SetValue(2.0F);
    EXPECT_EQ(Do(*plugin, HistoryOpRedo).failed, 1);
    plugin.reset();

    auto other = Make();
    const std::string file = FileNamed("Norvane/LM6Pfgd/QoLM6Pfgd.hst");
    const HistoryRecord opened = Do(*other, HistoryOpOpen, 0, file.c_str());
    EXPECT_EQ(Texts(*other, opened.count), "Initial State|Sensitivity: 6.5|Sensitivity: 2.0");
    Do(*other, HistoryOpGoTo, 1);
    EXPECT_NEAR(Get(*other), 0.65F, 1e-6F);
    std::ofstream(file, std::ios::app) << "what stands behind";
    EXPECT_EQ(
        MessageOf(Do(*other, HistoryOpOpen, 0, file.c_str())),
        "The file " + file +
            " is not a history that can be read. (Encountered unknown tag 1952540791 at byte " +
            std::to_string(std::filesystem::file_size(file) - 18) + ")");
}

TEST_F(PluginHistoryTest, ATouchInTheHostsOwnViewIsAStep)
{
    auto plugin = Make();
    Gesture(*plugin, ParamEventGestureBegins, Sensitivity, 0.5F);
    for (const float value : {0.6F, 0.7F, 0.8F}) {
        plugin->SetAutomatableParam(Side::UI, {Sensitivity, value});
    }
    EXPECT_EQ(Texts(*plugin), "Initial State"); // it is still held
    Gesture(*plugin, ParamEventGestureEnds, Sensitivity);
    plugin->SetAutomatableParam(Side::UI, {Strength, 0.1F}); // automation
    Gesture(*plugin, ParamEventGestureBegins, Strength, 0.1F);
    Gesture(*plugin, ParamEventGestureEnds, Strength);
    // By way of the audio, which is late.
    plugin->Initialize();
    {
        const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetProcessLock());
        plugin->SetAutomatableParam(Side::Process, {Strength, 0.2F});
    }
    for (size_t steps = 0; steps < 3; std::this_thread::yield()) { // the test's limit ends it
        const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetUILock());
        steps = plugin->GetHistory()->GetModel().snapshots.size();
    }
    EXPECT_EQ(Texts(*plugin), "Initial State|Sensitivity: 8.0|Strength: 2.0");
    ParamEventRecord unknown{ParamEventGestureBegins, 4, 0};
    EXPECT_EQ(Send(*plugin, PLUGIN_CORE_MESSAGE_GESTURE, unknown), PluginCoreUnsupported);
    unknown = {ParamEventValueChanged, 0, 0};
    EXPECT_EQ(Send(*plugin, PLUGIN_CORE_MESSAGE_GESTURE, unknown), PluginCoreUnsupported);
}

// With a signal path made for the test, and sessions.
using RigHistoryTest = PluginRig::StateFixture;

TEST_F(RigHistoryTest, EveryChangeOfTheStateReachesTheHistory)
{
    factory.definition.timerPeriod = 1;
    plugin = std::make_unique<Plugin>(factory, MakeSetup(Answer, this));
    factory.events.clear();
    SetGain(0.25F);
    EXPECT_EQ(factory.events, "history ");
    SetGain(0.25F);
    EXPECT_EQ(factory.events, "history ");
    factory.events.clear();
    ApplyPreset(*plugin, "Factory settings");
    EXPECT_NE(factory.events.find("history "), std::string::npos);
    factory.events.clear();
    Set(PluginRig::Gain, 0.75F, Side::Process);
    EXPECT_EQ(factory.events, "");
    plugin->Initialize();
    for (bool isThere = false; !isThere; std::this_thread::yield()) { // the test's limit ends it
        const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetUILock());
        isThere = factory.events.find("history ") != std::string::npos;
    }
}

TEST_F(RigHistoryTest, TheInstancesOwnFileIsNamedByItsSession)
{
    for (const SessionMode mode :
         {SessionMode::Shared, SessionMode::OwnHistory, SessionMode::KeptIdentifier}) {
        factory.definition.sessionMode = mode;
        Create();
        const std::string session = Util::FormatUuid(plugin->GetSessionUuid()).ToStdString();
        String path;
        plugin->GetHistoryFilePath(path);
        const std::filesystem::path own = folders.Home() / "data/Test/Plugin";
        EXPECT_EQ(
            path.ToStdString(),
            own / (mode == SessionMode::Shared ? "QoPlugin.hst" : "QoPlugin_" + session + ".hst"));
        EXPECT_TRUE(std::filesystem::is_directory(own));

        HistoryModel model;
        plugin->LoadHistory(model);
        ASSERT_EQ(model.snapshots.size(), 1U);
        EXPECT_EQ(model.snapshots[0].label, "<Initial State>");
        model.slots[1] = 0;
        ASSERT_TRUE(plugin->SaveHistory(model));
        HistoryModel loaded;
        plugin->LoadHistory(loaded);
        EXPECT_EQ(loaded.snapshots[0].bytes, model.snapshots[0].bytes);
        EXPECT_EQ(loaded.slots, model.slots);
    }
}

} // namespace
