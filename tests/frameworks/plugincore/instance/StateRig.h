// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/plugincore/instance/StateChunk.h"
#include "restoration/plugin/LMDSPSet.h"
#include "tests/frameworks/plugincore/instance/TestDefinition.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <memory>
#include <string>

/// An instance whose signal path is made for tests of its state: one element with one parameter,
/// and everything that is told of a save, a load or a new format writes it down.
namespace StateRig {

using Side = DSP::Context;

// One parameter; made anew for each format unless told to live on.
class Box final : public DSP::ElementDispatcher {
public:
    Box(DSP::ElementHost& owner, float rate, uint32_t layout, const bool& isToLiveOn)
        : ElementDispatcher({owner, "Box", rate, layout})
        , livesOn(isToLiveOn)
    {
        RegisterFloatParam(
            0,
            {.name = "Gain",
             .range = {0.0F, 10.0F},
             .defaultValue = 1.0F,
             .target = &gain,
             .onUIChange = [this](float) { GetHost().ParamChanged(*this, "Gain"); }});
        FinaliseParams();
    }

    bool IsConfigurable() const override { return livesOn; }

private:
    const bool& livesOn;
    float gain = 0;
};

class BoxTransform final : public DSP::TransformBase {
public:
    BoxTransform(DSP::ElementHost& owner,
                 float rate,
                 uint32_t layout,
                 std::string& newEvents,
                 const bool& boxLivesOn)
        : TransformBase(owner,
                        std::make_unique<DSP::LMDSPSet>(
                            owner,
                            "BOX",
                            [&boxLivesOn](DSP::ElementHost& instance, float hz, uint32_t config) {
                                return std::make_shared<Box>(instance, hz, config, boxLivesOn);
                            }),
                        "Gain\tBOX\tGain\r\n")
        , events(newEvents)
    {
        SetFormat(rate, layout);
    }
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
        return std::make_unique<BoxTransform>(host, rate, layout, events, boxLivesOn);
    }
    std::unique_ptr<HistoryManager> CreateHistory(Plugin& /*plugin*/) const override
    {
        return std::make_unique<CountingHistory>(events);
    }

    TestDefinition definition{"State"};
    bool boxLivesOn = false;
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

struct Fixture : testing::Test {
    const Support::UserFolders folders;
    Factory factory;
    std::unique_ptr<Plugin> plugin;
    uint32_t paramEvents = 0;

    static uint32_t
    Answer(uint32_t /*magic*/, uint32_t opcode, uint32_t /*context*/, void* refcon, void* /*data*/)
    {
        auto& test = *static_cast<Fixture*>(refcon);
        test.paramEvents += opcode == HostOpcodeParamEvent ? 1 : 0;
        return PluginCoreUnsupported;
    }

    void Create()
    {
        plugin = std::make_unique<Plugin>(factory, MakeSetup(Answer, this));
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
inline String Elements(const String& gain)
{
    return String(R"("DSP Elements":{"Type":"Dictionary","Value":{"Box":{"Type":"Dictionary",)"
                  R"("Value":{"Gain":{"Type":"Float","Value":%1}}}}})")
        .arg(gain);
}

inline String State(const String& gain, const String& more)
{
    return String(R"({"DSP State":{"Type":"Dictionary","Value":{%1}}%2})")
        .arg(Elements(gain))
        .arg(more);
}

inline constexpr const char* Version1 = R"(,"Major Version":{"Type":"Int","Value":1})";

} // namespace StateRig
