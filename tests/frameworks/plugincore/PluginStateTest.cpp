// SPDX-License-Identifier: ISC
// The state of an instance, with a signal path made for the test: what a chunk holds, what a
// damaged one does, and what a new format does to it all.
#include "frameworks/plugincore/Plugin.h"
#include "frameworks/plugincore/StateChunk.h"
#include "frameworks/plugincore/dsp/ElementDispatcher.h"
#include "restoration/plugin/LMDSPSet.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

namespace {

using Side = DSP::Context;

// One parameter; made anew for each format unless told to live on.
class Box final : public DSP::ElementDispatcher {
public:
    Box(DSP::ElementHost& owner, float rate, uint32_t layout)
        : ElementDispatcher({owner, "Box", rate, layout})
    {
        DSP::ParamRegistration<float> registration;
        registration.name = "Gain";
        registration.range = {0.0F, 10.0F};
        registration.defaultValue = 1.0F;
        registration.target = &gain;
        registration.onUIChange = [this](float) { GetHost().ParamChanged(*this, "Gain"); };
        RegisterFloatParam(0, registration);
        FinaliseParams();
    }

private:
    float gain = 0;
};

class BoxTransform final : public DSP::TransformBase {
public:
    BoxTransform(DSP::ElementHost& owner, float rate, uint32_t layout, std::string& newEvents)
        : TransformBase(owner,
                        std::make_unique<DSP::LMDSPSet>(
                            owner,
                            "BOX",
                            [](DSP::ElementHost& instance, float hz, uint32_t config) {
                                return std::make_shared<Box>(instance, hz, config);
                            }))
        , events(newEvents)
    {
        SetFormat(rate, layout);
        params = std::make_unique<DSP::ParamSetImpl>(GetSet(), "Gain\tBOX\tGain\r\n");
    }
    const DSP::ParamSetBase& GetParamSet() const override { return *params; }
    void BeforeSave() override { events += "save "; }
    void AfterStateLoaded() override { events += "loaded "; }
    bool LoadLegacyChunk(std::span<const uint8_t> text, uint32_t version) override
    {
        events += version == 0 ? "legacy0 " : "legacy? ";
        return !text.empty() && text.front() == 'L';
    }
    void BeforeFormatChange() override { events += "before "; }
    void AfterFormatChange() override { events += "after "; }

private:
    std::string& events;
    std::unique_ptr<DSP::ParamSetBase> params;
};

class Definition final : public PluginDefinition {
public:
    String GetVendor() const override { return "Test"; }
    String GetShortName() const override { return "State"; }
    uint32_t GetMaxBlockFrames() const override { return 256; }
    uint32_t GetStateVersion() const override { return 1; }
    uint32_t GetVersionNumber() const override { return 6000; }
    uint32_t GetSessionMode() const override { return sessionMode; }
    uint32_t GetTimerPeriod() const override { return timerPeriod; }
    uint32_t sessionMode = 0;
    uint32_t timerPeriod = 0; // ms
};

class CountingHistory final : public HistoryManager {
public:
    explicit CountingHistory(std::string& newEvents)
        : events(newEvents)
    {
    }
    bool AddSnapshot(const String& /*label*/) override { return true; }
    void Flush() override {}
    void onEditorOpened() override {}
    void onStateChanged() override { events += "history "; }
    void onIdle() override {}

private:
    std::string& events;
};

class Factory final : public PluginFactory {
public:
    const PluginDefinition& GetDefinition() const override { return definition; }
    std::unique_ptr<DSP::TransformBase>
    CreateTransform(DSP::ElementHost& host, float rate, uint32_t layout) const override
    {
        return std::make_unique<BoxTransform>(host, rate, layout, events);
    }
    std::unique_ptr<HistoryManager> CreateHistory(Plugin& /*plugin*/) const override
    {
        return std::make_unique<CountingHistory>(events);
    }

    Definition definition;
    mutable std::string events;
};

// Writes down what it is told.
class TestEditor final : public Editor {
public:
    explicit TestEditor(std::string& newEvents)
        : events(newEvents)
    {
    }
    void BeginLoad() override { events += "begin "; }
    void EndLoad() override { events += "end "; }
    void ParamChanged(const String& /*element*/, const String& /*param*/) override {}
    void StateChanged() override {}
    void CloseForFormat() override { events += "close "; }
    void ReopenAfterFormat() override { events += "reopen "; }
    void DetachControllers() override { events += "detach "; }
    void AttachControllers() override
    {
        events += "attach ";
        attached = true;
    }

    std::string& events;
    std::atomic<bool> attached = false;
};

struct PluginStateTest : testing::Test {
    const Support::UserFolders folders;
    Factory factory;
    std::unique_ptr<Plugin> plugin;
    uint32_t paramEvents = 0;

    static uint32_t
    Answer(uint32_t /*magic*/, uint32_t opcode, uint32_t /*context*/, void* refcon, void* /*data*/)
    {
        auto& test = *static_cast<PluginStateTest*>(refcon);
        test.paramEvents += opcode == HostOpcodeParamEvent ? 1 : 0;
        return PluginCoreUnsupported;
    }

    void Create()
    {
        PluginSetup setup;
        setup.hostCallback = Answer;
        setup.hostRefcon = this;
        setup.sampleRate = 48000.0F;
        plugin = std::make_unique<Plugin>(factory, setup);
        plugin->Initialize();
        factory.events.clear();
    }
    void TearDown() override { plugin.reset(); } // its timer speaks to the rest

    // Normalised.
    void Set(float value) { plugin->SetAutomatableParam(Side::UI, {0, value}); }
    float Get(Side side = Side::Process) const
    {
        ParamValueRecord record{0, -1.0F};
        plugin->GetAutomatableParam(side, record);
        return record.value;
    }
    Util::Bytes Save()
    {
        Util::Bytes chunk(plugin->GetStateSize());
        EXPECT_TRUE(plugin->GetChunk(chunk));
        return chunk;
    }
    static Util::Bytes ChunkOf(const String& text)
    {
        Util::Bytes chunk(StateChunk::GetChunkSizeOfText(text));
        EXPECT_TRUE(StateChunk::WriteText(text, chunk));
        return chunk;
    }
    static String TextOf(const Util::Bytes& chunk)
    {
        const auto text = StateChunk::ReadText(chunk);
        return text ? String(std::string(text->begin(), text->end())) : String();
    }
    bool LoadText(const String& text, uint32_t version = 1)
    {
        return plugin->SetChunk(ChunkOf(text), version, DSP::SourceHost);
    }
};

// A saved Gain, and what stands around it in each form of the state.
String Elements(const String& gain)
{
    return String(R"("DSP Elements":{"Type":"Dictionary","Value":{"Box":{"Type":"Dictionary",)"
                  R"("Value":{"Gain":{"Type":"Float","Value":%1}}}}})")
        .arg(gain);
}

String State(const String& gain, const String& more)
{
    return String(R"({"DSP State":{"Type":"Dictionary","Value":{%1}}%2})")
        .arg(Elements(gain))
        .arg(more);
}

const char* const Version1 = R"(,"Major Version":{"Type":"Int","Value":1})";

} // namespace

TEST_F(PluginStateTest, SavesWhatTheFormSaysAndNothingElse)
{
    Create();
    Set(0.25F);
    const std::optional<Util::Bytes> text = StateChunk::ReadText(Save());
    ASSERT_TRUE(text);
    const auto state = Util::ReadDictionary(*factory.CreateReader(), *text);
    ASSERT_TRUE(state);
    const auto element = [](const char* name, uint32_t gainTenths) {
        Util::Dictionary result;
        result.Set("Element Name", {String(name)});
        result.Set("Param Version", {int32_t{0}});
        result.Set("Extra Bytes", {Util::Bytes()});
        if (gainTenths != 0) {
            result.Set("Gain", {gainTenths / 10.0});
        }
        return result;
    };
    Util::Dictionary elements;
    elements.Set("Box", {element("Box", 25)});
    elements.Set("Global", {element("Global", 0)}); // nothing of it belongs to a session
    Util::Dictionary inner;
    inner.Set("DSP Elements", {elements});
    Util::Dictionary expected;
    expected.Set("DSP State", {inner});
    expected.Set("Context State", {Util::Dictionary()});
    expected.Set("Major Version", {int32_t{1}});
    expected.Set("Minor Version", {int32_t{1}});
    EXPECT_EQ(*state, expected);
}

TEST_F(PluginStateTest, LoadsByFormAndVersionOrChangesNothing)
{
    struct Row {
        String text;
        uint32_t version;
        bool succeeds;
        float gain;
    };
    const float kept = 0.5F;
    const String legacy = String("{%1}").arg(Elements("7"));
    const Row rows[] = {
        {State("7", Version1), 1, true, 0.7F},
        {State("7", Version1), 6000, true, 0.7F},
        {State("7", R"(,"Major Version":{"Type":"UInt","Value":1})"), 1, true, 0.7F},
        {State("7", R"(,"Major Version":{"Type":"Int","Value":2})"), 1, true, kept},
        {State("7", R"(,"Major Version":{"Type":"Int","Value":-1})"), 1, true, kept},
        {State("7", R"(,"Major Version":{"Type":"Float","Value":1})"), 1, true, kept},
        {State("7", R"(,"Major Version":{"Type":"String","Value":"1"})"), 1, true, kept},
        {State("7", ""), 1, true, kept}, // the older form has its elements on top
        {legacy, 1, true, 0.7F},
        {String("{%1%2}").arg(Elements("7")).arg(Version1), 1, true, kept},
        {String("{%1,%2}").arg(Elements("3")).arg(Elements("7")),
         1,
         true,
         0.7F}, // the later one counts
        {"", 1, true, kept},
        {"no JSON", 1, true, kept},
        {"[]", 1, true, kept},
        {legacy + "x", 1, true, kept},
        {State("7", R"(,"Other":1,"Major Version":{"Type":"Int","Value":1})"), 1, true, kept},
        {State("\"7\"", Version1), 1, true, kept},
        {std::string(100'000, '{'), 1, true, kept},
        {State("7", Version1), 0, false, kept},
        {"L", 0, true, kept},
    };
    Create();
    for (const Row& row : rows) {
        Set(kept);
        EXPECT_EQ(LoadText(row.text, row.version), row.succeeds) << row.text.Left(200).c_str();
        EXPECT_FLOAT_EQ(Get(), row.gain) << row.text.Left(200).c_str();
        EXPECT_FLOAT_EQ(Get(Side::UI), row.gain) << row.text.Left(200).c_str();
    }
    EXPECT_EQ(paramEvents, 0U) << "the host is not told of its own change";
    ASSERT_TRUE(plugin->SetChunk(ChunkOf(legacy), 1, DSP::SourceController));
    EXPECT_EQ(paramEvents, 1U);
}

TEST_F(PluginStateTest, ADamagedChunkReachesNobody)
{
    Create();
    Set(0.5F);
    const Util::Bytes good = ChunkOf(State("7", Version1));
    TestEditor editor(factory.events);
    plugin->AttachEditor(&editor);
    factory.events.clear();
    for (std::size_t length = 0; length < good.size(); ++length) {
        EXPECT_FALSE(plugin->SetChunk({good.data(), length}, 1, DSP::SourceHost));
    }
    EXPECT_EQ(factory.events, "");
    EXPECT_EQ(Get(), 0.5F);
    EXPECT_TRUE(plugin->SetChunk(good, 1, DSP::SourceHost));
    EXPECT_EQ(factory.events, "begin loaded history end ");
    factory.events.clear();
    EXPECT_FALSE(plugin->SetChunk(good, 0, DSP::SourceHost)); // the signal path knows no older form
    EXPECT_EQ(factory.events, "begin legacy0 end ");
    plugin->AttachEditor(nullptr);
}

TEST_F(PluginStateTest, ComparesOnlyTheElementsOnTop)
{
    struct Row {
        String text;
        bool succeeds;
        bool equal;
    };
    const char* const otherTable =
        R"({"DSP Elements":{"Type":"Dictionary","Value":{"Box":{"Type":"Dictionary","Value":{)"
        R"("Param Version":{"Type":"Int","Value":3}}}}}})";
    const Row rows[] = {
        {String("{%1}").arg(Elements("5")), true, true},
        {String("{%1}").arg(Elements("7")), true, false},
        {State("7", Version1), true, true},
        {"no JSON", true, true},
        {otherTable, false, false},
    };
    Create();
    Set(0.5F);
    for (const Row& row : rows) {
        bool equal = !row.equal;
        EXPECT_EQ(plugin->CompareChunk(ChunkOf(row.text), equal), row.succeeds) << row.text.c_str();
        if (row.succeeds) {
            EXPECT_EQ(equal, row.equal) << row.text.c_str();
        }
    }
    bool equal = true;
    EXPECT_FALSE(plugin->CompareChunk({}, equal));
}

TEST_F(PluginStateTest, SessionsCarryAnIdentifierOnlyInTheirOwnMode)
{
    const auto identifier = [this] { return Util::FormatUuid(plugin->GetSessionUuid()); };
    Create();
    EXPECT_FALSE(TextOf(Save()).Find("Session UUID"));
    factory.definition.sessionMode = 2;
    Create();
    const String first = identifier();
    const Util::Bytes chunk = Save();
    EXPECT_TRUE(TextOf(chunk).Find(first));
    Create();
    EXPECT_NE(identifier(), first);
    ASSERT_TRUE(plugin->SetChunk(chunk, 1, DSP::SourceHost));
    EXPECT_EQ(identifier(), first);
    ASSERT_TRUE(LoadText(
        State("7", String(Version1) + R"(,"Session UUID":{"Type":"String","Value":"none"})")));
    EXPECT_EQ(identifier(), first);
}

TEST_F(PluginStateTest, ANewFormatCarriesTheValuesOverIntoNewElements)
{
    Create();
    Set(0.25F);
    factory.events.clear();
    plugin->SetStreamFormat(96000.0F, 1);
    EXPECT_EQ(Get(), 0.25F);
    EXPECT_EQ(Get(Side::UI), 0.25F);
    EXPECT_EQ(factory.events.find("save before "), 0U);
    EXPECT_EQ(factory.events.rfind("after "), factory.events.size() - 6);
    EXPECT_EQ(paramEvents, 0U);
}

TEST_F(PluginStateTest, ANewFormatOnTheEditorsThreadClosesAndReopensIt)
{
    Create();
    Set(0.25F);
    TestEditor editor(factory.events);
    plugin->AttachEditor(&editor);
    factory.events.clear();
    plugin->SetStreamFormat(96000.0F, 1);
    EXPECT_EQ(Get(), 0.25F);
    EXPECT_NE(factory.events.find("before close "), std::string::npos) << factory.events;
    EXPECT_EQ(factory.events.find("begin"), std::string::npos) << "it is closed while values load";
    EXPECT_NE(factory.events.find("after reopen "), std::string::npos) << factory.events;
    EXPECT_EQ(plugin->GetEditor(), &editor);
    plugin->AttachEditor(nullptr);
}

TEST_F(PluginStateTest, ANewFormatOnAnotherThreadLeavesTheEditorToTheTick)
{
    factory.definition.timerPeriod = 1;
    Create();
    TestEditor editor(factory.events);
    {
        const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetUILock());
        Set(0.25F);
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
TEST_F(PluginStateTest, WhatIsSetOrSavedMeanwhileIsNotOverrunByTheSavedState)
{
    Create(); // without ticks
    TestEditor editor(factory.events);
    const auto changeFormat = [&](float rate) {
        Set(0.25F);
        std::thread([&] { plugin->AttachEditor(&editor); }).join();
        plugin->SetStreamFormat(rate, 1);
    };
    changeFormat(96000.0F);
    EXPECT_EQ(Get(), 0.1F) << "still to be loaded";
    const String text = TextOf(Save());
    EXPECT_TRUE(text.Find("2.5")) << text.c_str();

    changeFormat(48000.0F);
    Set(0.75F);
    plugin->AttachEditor(nullptr); // does what the tick would do
    EXPECT_EQ(Get(), 0.75F);

    changeFormat(96000.0F);
    ASSERT_TRUE(LoadText(State("7", Version1)));
    plugin->AttachEditor(nullptr);
    EXPECT_FLOAT_EQ(Get(), 0.7F);
}
