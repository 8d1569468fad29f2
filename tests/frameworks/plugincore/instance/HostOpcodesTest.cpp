// SPDX-License-Identifier: ISC
// What an instance asks of its host and notifies it of beside latency and gestures, what a product
// may answer in its place, and what the entry asks of the product.
#include "frameworks/plugincore/dispatch/Entry.h"
#include "frameworks/plugincore/instance/GestureReport.h"
#include "tests/frameworks/plugincore/instance/PluginRig.h"

#include <future>
#include <thread>

using namespace PluginRig;

namespace {

class HostOpcodesTest : public Fixture {
protected:
    uint32_t Dispatch(uint32_t selector, uint32_t context, void* data)
    {
        return DispatchEntryCall(factory, PLUGIN_CORE_MAGIC, selector, context, plugin.get(), data);
    }
};

TEST_F(HostOpcodesTest, AsksOnceWhatTheHostIs)
{
    Create(); // refuses
    EXPECT_FALSE(plugin->GetHostFacts().GetName().IsEmpty());
    EXPECT_EQ(plugin->GetHostFacts().GetVersion(), std::nullopt);
    EXPECT_EQ(plugin->AskHostSeconds(Side::UI), std::nullopt);

    float version = 2.5F;
    hostAnswer = [&](uint32_t opcode, void* data) -> uint32_t {
        if (opcode == HostOpcodeGetHostInfo) {
            *static_cast<HostInfoRecord*>(data) = {6, 0, "Studio and more", version, 0};
            return PluginCoreSuccess;
        }
        if (opcode == HostOpcodeGetProcessSeconds || opcode == HostOpcodeGetUISeconds) {
            *static_cast<float*>(data) = static_cast<float>(opcode);
            return PluginCoreSuccess;
        }
        return PluginCoreUnsupported;
    };
    Create();
    EXPECT_EQ(plugin->GetHostFacts().GetName(), String("Studio"));
    EXPECT_EQ(plugin->GetHostFacts().GetVersion(), 2.5F);
    plugin->Initialize();
    EXPECT_EQ(Count(HostOpcodeGetHostInfo), 0U); // Create() has cleared the first
    EXPECT_EQ(plugin->AskHostSeconds(Side::Process), 18.0F);
    EXPECT_EQ(plugin->AskHostSeconds(Side::UI), 19.0F);
    version = 0;
    Create();
    EXPECT_EQ(plugin->GetHostFacts().GetVersion(), std::nullopt);
}

TEST_F(HostOpcodesTest, TheProductIsAskedWhenItStartsStopsIdlesAndGetsMessages)
{
    factory.definition.timerPeriod = 1;
    Create();
    while (factory.transform->idles < 2) {
        std::this_thread::yield();
    }
    char text[] = "hello";
    HostMessageRecord message{BoxTransform::KnownMessage, 5, text};
    EXPECT_EQ(Dispatch(SelectorHostMessage, ContextProcess, &message), PluginCoreSuccess);
    message.message = 78;
    EXPECT_EQ(Dispatch(SelectorHostMessage, ContextUI, &message), PluginCoreUnsupported);
    plugin->Terminate();
    EXPECT_EQ(factory.transform->hooks, "start hello hello stop ");
}

TEST_F(HostOpcodesTest, AnOverrideKeepsTheHostsValuesOut)
{
    Create();
    plugin->SetParamOverride([](Side context) { return context == Side::UI; });
    EXPECT_EQ(plugin->SetAutomatableParam(Side::UI, {Late, 0.5F}), PluginCoreSuccess);
    EXPECT_EQ(Get(Late, Side::UI), 0.0F);
    EXPECT_EQ(plugin->SetAutomatableParam(Side::UI, {99, 0.5F}), PluginCoreUnsupported); // first
    Set(Late, 0.5F, Side::Process);
    EXPECT_EQ(Get(Late), 0.5F);
}

TEST_F(HostOpcodesTest, ListsWhatDiffersFromTheDefaults)
{
    Create();
    Set(Gain, 0.5F);
    char text[64] = "unchanged";
    ChangedParamsRecord list{4, 0, text};
    HostMessageRecord message{PLUGIN_CORE_MESSAGE_CHANGED_PARAMS, sizeof list, &list};
    EXPECT_EQ(Dispatch(SelectorHostMessage, ContextUI, &message), PluginCoreSuccess);
    EXPECT_STREQ(text, "unchanged");
    EXPECT_EQ(list.size, sizeof "BOX.Gain\t5\n");
    EXPECT_EQ(Dispatch(SelectorHostMessage, ContextUI, &message), PluginCoreSuccess);
    EXPECT_STREQ(text, "BOX.Gain\t5\n");
    EXPECT_EQ(Dispatch(SelectorHostMessage, ContextProcess, &message), PluginCoreUnsupported);
    message.length = 8;
    EXPECT_EQ(Dispatch(SelectorHostMessage, ContextUI, &message), PluginCoreUnsupported);
}

TEST_F(HostOpcodesTest, AForcedFormatStartsAnewAlsoInTheSameOne)
{
    Box& box = Create();
    std::vector<float> samples(100);
    Process(samples);
    const uint32_t resets = box.resets;
    plugin->SetStreamFormat(48000.0F, 0);
    EXPECT_EQ(box.resets, resets);
    plugin->ForceReconfigure(48000.0F, 0);
    EXPECT_EQ(box.resets, resets + 1);
    plugin->ForceReconfigure(-1.0F, 0); // can't be served
    EXPECT_EQ(box.GetSampleRate(), 48000.0F);
}

TEST_F(HostOpcodesTest, ElementsSeeTheWholeTransportDuringACallOnly)
{
    Box& box = Create();
    TransportRecord transport{};
    transport.position = 500;
    transport.isPositionValid = 1;
    std::vector<float> samples(9000);
    Process(samples, &transport);
    EXPECT_EQ(box.transportPosition, 500 + 8192); // of the second chunk
    EXPECT_EQ(plugin->GetTransportState(), nullptr);
}

TEST_F(HostOpcodesTest, AnActionsChangesComeAtOnceWhereTheHostTakesThat)
{
    Create();
    bool isTaken = true;
    AutomationEventRecord seen{};
    hostAnswer = [&](uint32_t opcode, void* data) -> uint32_t {
        if (opcode == HostOpcodeAutomationEvent) {
            auto& record = *static_cast<AutomationEventRecord*>(data);
            seen = record;
            record.handled = isTaken ? 1 : 0;
        }
        return PluginCoreSuccess;
    };
    DSP::Element& global = *plugin->GetSet().GetGlobalElement();
    Box& box = factory.transform->GetBox();
    const auto act = [&] {
        calls.clear();
        const GestureReport::UserAction action(plugin->GetGestures());
        plugin->ParamChanged(box, "Gain");
        plugin->ParamChanged(global, "Global Bypass");
        plugin->ParamChanged(box, "Gain");
        plugin->ParamChanged(global, "Meter Enable"); // a preference, which no host automates
        EXPECT_TRUE(calls.empty());
    };
    act();
    EXPECT_EQ(seen.count, 2U);
    EXPECT_EQ(seen.events[0].kind, static_cast<uint32_t>(ParamEventValueChanged));
    EXPECT_EQ(seen.events[0].index, static_cast<uint32_t>(Gain));
    EXPECT_EQ(seen.events[1].index, static_cast<uint32_t>(Bypass));
    EXPECT_EQ(Count(HostOpcodeParamEvent), 0U);
    EXPECT_EQ(Count(HostOpcodeReloadEditor), 1U);
    EXPECT_EQ(Count(HostOpcodeDirtyState), 1U);
    isTaken = false;
    act();
    EXPECT_EQ(Count(HostOpcodeParamEvent), 2U);

    calls.clear();
    plugin->SetAutomationEnabled(false);
    plugin->ParamChanged(box, "Gain");
    plugin->ParamChanged(global, "Meter Enable");
    EXPECT_TRUE(calls.empty());
    plugin->SetAutomationEnabled(true);
    plugin->ParamChanged(global, "Global Dirty Flag"); // saved nowhere and shown nowhere
    EXPECT_EQ(Count(HostOpcodeReloadEditor), 0U);
    plugin->ParamChanged(global, "Meter Enable"); // an action by itself
    EXPECT_EQ(Count(HostOpcodeReloadEditor), 1U);
}

TEST_F(HostOpcodesTest, ATouchedFileInTheOverrideFolderAsksForANewInstance)
{
    const Support::TemporaryFolder folder;
    Util::ConfigFile("SOFTWARE/Test")
        .WriteString("ResourceOverridePath.Plugin", folder.Path().c_str());
    factory.definition.timerPeriod = 1;
    std::promise<ReinstantiateRecord> asked;
    std::atomic<uint32_t> count = 0;
    hostAnswer = [&](uint32_t opcode, void* data) -> uint32_t {
        if (opcode == HostOpcodeRequestReinstantiate && ++count == 1) {
            asked.set_value(*static_cast<ReinstantiateRecord*>(data));
        }
        return PluginCoreUnsupported;
    };
    Create();
    const auto waitForTicks = [&] {
        const uint32_t idles = factory.transform->idles;
        while (factory.transform->idles < idles + 3) {
            std::this_thread::yield();
        }
    };
    waitForTicks();
    EXPECT_EQ(count, 0U);
    std::ofstream(folder / "reinstantiate.txt") << "now";
    const ReinstantiateRecord record = asked.get_future().get();
    EXPECT_EQ(record.third, nullptr);
    waitForTicks(); // the file was made first and written then, which may be two changes
    const uint32_t settled = count;
    std::filesystem::remove(folder.Path() / "reinstantiate.txt");
    waitForTicks();
    EXPECT_EQ(count, settled);
    plugin.reset();
}

TEST_F(HostOpcodesTest, TheModuleListIsTheProducts)
{
    Create();
    ModuleListRecord record{};
    EXPECT_EQ(Dispatch(SelectorModuleListQuery, ContextUI, &record), PluginCoreSuccess);
    EXPECT_EQ(record.count, 0U);
    factory.definition.modules = {{"first", {1, 2}}, {"second", {3}}};
    EXPECT_EQ(Dispatch(SelectorModuleListQuery, ContextUI, &record), PluginCoreSuccess);
    EXPECT_EQ(record.count, 2U);
    const auto ask = [&](int32_t op, uint32_t index) {
        record.op = op;
        record.index = index;
        return Dispatch(SelectorModuleListQuery, ContextUI, &record);
    };
    EXPECT_EQ(ask(ModuleListOpGetFirstValue, 1), PluginCoreSuccess);
    EXPECT_EQ(record.value, 11U);
    EXPECT_EQ(ask(ModuleListOpGetSecondValue, 1), PluginCoreSuccess);
    EXPECT_EQ(record.value, 21U);
    EXPECT_EQ(ask(ModuleListOpGetFirstValue, 2), PluginCoreUnsupported);
    EXPECT_EQ(ask(ModuleListOpGetTotal, 0), PluginCoreSuccess);
    EXPECT_EQ(record.value, 30U);
    char text[16] = "unchanged";
    uint8_t bytes[2] = {};
    record.text = text;
    EXPECT_EQ(ask(ModuleListOpGetContent, 0), PluginCoreNullRecord);
    record.data = bytes;
    EXPECT_EQ(ask(ModuleListOpGetContent, 0), PluginCoreSuccess);
    EXPECT_STREQ(text, "first");
    EXPECT_EQ(bytes[1], 2U);
    EXPECT_EQ(ask(6, 0), PluginCoreUnsupported);
    EXPECT_EQ(ask(ModuleListOpGetText, 0), PluginCoreSuccess);
    EXPECT_STREQ(text, "all of them");
}

TEST_F(HostOpcodesTest, TheFactoryMakesTheEditorAndRegistersItsWidgetsOnce)
{
    Create();
    EditorRecord record{};
    record.x = 7;
    EXPECT_EQ(Dispatch(SelectorEditorCommand, ContextUI, &record), PluginCoreNoEditor);
    uint32_t made = 0;
    factory.makeEditor = [&](const PluginFactory::EditorPlace& place) {
        EXPECT_EQ(place.x, 7U);
        ++made;
        return std::make_unique<TestEditor>(factory.events, 5);
    };
    for (int i = 0; i < 2; ++i) { // the second time it is open
        EXPECT_EQ(Dispatch(SelectorEditorCommand, ContextUI, &record), PluginCoreSuccess);
    }
    EXPECT_EQ(made, 1U);
    EXPECT_TRUE(plugin->HasNativeWindow());
    EditorRecord close{};
    close.op = EditorOpClose;
    EXPECT_EQ(Dispatch(SelectorEditorCommand, ContextUI, &close), PluginCoreSuccess);
    EXPECT_TRUE(factory.events.ends_with("gone "));
    EXPECT_FALSE(plugin->HasNativeWindow());
    EXPECT_EQ(Dispatch(SelectorEditorCommand, ContextUI, &record), PluginCoreSuccess);
    EXPECT_EQ(factory.registrations, 1U);

    const DestructorObserver observer(*plugin); // whoever is connected to an instance sees its end
    factory.events.clear();
    plugin.reset();
    EXPECT_EQ(factory.events, "gone ");
    EXPECT_TRUE(observer.IsDestroyed());
}

} // namespace
