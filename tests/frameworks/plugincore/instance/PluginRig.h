// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/plugincore/instance/StateChunk.h"
#include "restoration/plugin/LMDSPSet.h"
#include "tests/frameworks/plugincore/instance/TestDefinition.h"
#include "tests/frameworks/plugincore/instance/TestEditor.h"
#include "tests/frameworks/plugincore/instance/TestHistory.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <string>
#include <vector>

/// An instance whose signal path is made for tests of it: one element that passes audio on, as late
/// as it is told, and everything writes down what it sees.
namespace PluginRig {

using Side = DSP::Context; // `Context` is a namespace of its own

// Late by its parameter "Late", which no session holds; "Gain" is only a value. Lives through a new
// format, or is made anew.
class Box final : public DSP::ElementDispatcher {
public:
    static constexpr uint32_t MaxLate = 100;
    enum : uint32_t { Late, Gain };

    Box(DSP::ElementHost& owner, float rate, uint32_t layout, const bool& isToLiveOn)
        : ElementDispatcher({owner, "Box", rate, layout})
        , livesOn(isToLiveOn)
        , line(MaxLate)
    {
        RegisterFloatParam(Late,
                           {.name = "Late",
                            .range = {0, MaxLate},
                            .target = &late,
                            .onProcessChange =
                                [this](float value) {
                                    line.SetLength(static_cast<uint32_t>(value));
                                    GetHost().LatencyChanged(Side::Process);
                                },
                            .onUIChange = [this](float) { GetHost().ParamChanged(*this, "Late"); },
                            .info = {DSP::Persistence::Transient, "", false}});
        RegisterFloatParam(
            Gain,
            {.name = "Gain",
             .range = {0.0F, 10.0F},
             .defaultValue = 1.0F,
             .target = &gain,
             .onUIChange = [this](float) { GetHost().ParamChanged(*this, "Gain"); }});
        FinaliseParams();
    }

    bool IsConfigurable() const override { return livesOn; }

    std::vector<uint32_t> chunks;
    std::vector<std::optional<int64_t>> positions;
    std::vector<uint64_t> processPositions;
    double transportPosition = 0; // of the record that elements are shown
    uint32_t resets = 0;
    bool wasPositionless = false;
    bool wasOnUIThread = true;
    bool refusesStereo = false;
    bool refusesStereoLate = false; // when the delays are planned

protected:
    uint32_t GetLatencySamples(Side) const override { return static_cast<uint32_t>(late); }
    uint32_t GetMaxLatencySamples() const override
    {
        RefuseStereo(refusesStereoLate);
        return MaxLate;
    }
    void OnReset() override
    {
        ++resets;
        line.Clear();
    }
    void OnFormatChanged() override { RefuseStereo(refusesStereo); }
    void ProcessAudio(uint32_t frames, float* const* channels) override
    {
        chunks.push_back(frames);
        positions.push_back(GetHost().GetTransportPosition());
        processPositions.push_back(GetHost().GetProcessPosition());
        const TransportRecord* transport = GetHost().GetTransportState();
        transportPosition = transport != nullptr ? transport->position : -1;
        wasPositionless = GetHost().IsPositionless();
        wasOnUIThread = GetHost().IsUIThread();
        line.Process(channels[0], channels[0], frames);
    }

private:
    void RefuseStereo(bool refuses) const
    {
        if (refuses && GetChannelCount() == 2) {
            throw std::bad_alloc();
        }
    }

    const bool& livesOn;
    DSP::DelayLine line;
    float late = 0;
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
                        "Gain\tBOX\tGain\r\n"
                        "Bypass\tGlobal\tGlobal Bypass\r\n"
                        "Late\tBOX\tLate\r\n")
        , events(newEvents)
    {
        SetFormat(rate, layout);
    }
    Box& GetBox() const { return dynamic_cast<Box&>(*GetSet().GetMainElement()); }
    void BeforeSave() override { events += "save "; }
    void AfterStateLoaded() override { events += "loaded "; }
    bool LoadLegacyChunk(std::span<const uint8_t> text, uint32_t version) override
    {
        events += version == 0 ? "legacy0 " : "legacy? ";
        return !text.empty() && text.front() == 'L';
    }
    void BeforeFormatChange() override { events += "before "; }
    void AfterFormatChange() override { events += "after "; }
    void Start() override { hooks += "start "; }
    void Stop() override { hooks += "stop "; }
    void Idle() override { ++idles; }
    bool HostMessage(Side /*context*/, uint32_t message, uint32_t length, const void* data) override
    {
        hooks += std::string(static_cast<const char*>(data), length) + " ";
        return message == KnownMessage;
    }

    static constexpr uint32_t KnownMessage = 77;
    std::string hooks; // what the host's side called, in its order
    std::atomic<uint32_t> idles = 0;

private:
    std::string& events;
};

class Factory final : public PluginFactory {
public:
    const PluginDefinition& GetDefinition() const override { return definition; }
    std::unique_ptr<DSP::TransformBase>
    CreateTransform(DSP::ElementHost& host, float rate, uint32_t layout) const override
    {
        auto made = std::make_unique<BoxTransform>(host, rate, layout, events, boxLivesOn);
        transform = made.get();
        return made;
    }
    std::unique_ptr<HistoryManager> CreateHistory(Plugin& /*plugin*/) const override
    {
        return std::make_unique<TestHistory>([this] { events += "history "; });
    }

    TestDefinition definition{"Plugin"};
    bool boxLivesOn = true;
    std::function<std::unique_ptr<Editor>(const EditorPlace& place)> makeEditor; // unset: none
    mutable BoxTransform* transform = nullptr;
    mutable std::string events;
    mutable uint32_t registrations = 0;

protected:
    void RegisterUI() const override { ++registrations; }
    std::unique_ptr<Editor> CreateEditor(Plugin& /*plugin*/,
                                         const EditorPlace& place) const override
    {
        return makeEditor ? makeEditor(place) : nullptr;
    }
};

struct Call {
    uint32_t opcode;
    uint32_t context;
    uint32_t word;
    bool operator==(const Call&) const = default;
};

/// Places in the list of automatable parameters.
enum : uint32_t { Gain, Bypass, Late };

class Fixture : public testing::Test {
protected:
    const Support::UserFolders folders;
    Util::ConfigFile settings{"SOFTWARE/Test/Plugin"};
    Factory factory;
    std::vector<Call> calls;
    std::function<void()> onLatencyChanged;
    std::function<uint32_t(uint32_t opcode, void* data)> hostAnswer; // unset: refuses most
    const char* options = "";
    int32_t format = FormatStandalone;
    std::unique_ptr<Plugin> plugin;

    static uint32_t
    Answer(uint32_t /*magic*/, uint32_t opcode, uint32_t context, void* refcon, void* data)
    {
        auto& test = *static_cast<Fixture*>(refcon);
        const uint32_t word = data != nullptr ? *static_cast<uint32_t*>(data) : 0;
        test.calls.push_back({opcode, context, word});
        if (opcode == HostOpcodeLatencyChanged && test.onLatencyChanged) {
            test.onLatencyChanged();
        }
        if (test.hostAnswer) {
            return test.hostAnswer(opcode, data);
        }
        return opcode == HostOpcodeLatencyChanged ? PluginCoreSuccess : PluginCoreUnsupported;
    }
    uint32_t Count(uint32_t opcode) const
    {
        return static_cast<uint32_t>(
            std::count_if(calls.begin(), calls.end(), [opcode](const Call& call) {
                return call.opcode == opcode;
            }));
    }

    Box& Create(float rate = 48000.0F, uint32_t layout = 0)
    {
        PluginSetup setup = MakeSetup(Answer, this, options);
        setup.identity.format = format;
        setup.sampleRate = rate;
        setup.channelConfig = layout;
        plugin = std::make_unique<Plugin>(factory, setup);
        const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetUILock());
        plugin->Initialize(); // from here on its tick may come
        calls.clear();
        factory.events.clear();
        return factory.transform->GetBox();
    }
    void TearDown() override { plugin.reset(); } // its timer speaks to the rest

    void Process(std::vector<float>& samples,
                 TransportRecord* transport = nullptr,
                 int32_t renderFlagB = 0)
    {
        float* channels[] = {samples.data(), nullptr, nullptr};
        ProcessRecord record{};
        record.frames = static_cast<uint32_t>(samples.size());
        record.channels = channels;
        record.transport = transport;
        record.renderFlagB = renderFlagB;
        const Util::CriticalSectionGuard guard(plugin->GetProcessLock());
        plugin->process(record);
    }
    void Settle()
    {
        const Util::CriticalSectionGuard guard(plugin->GetProcessLock());
        plugin->onSettle();
    }

    // Normalised.
    void Set(uint32_t index, float value, Side side = Side::UI)
    {
        ThreadController& locks = plugin->GetThreadController();
        const Util::CriticalSectionGuard guard(side == Side::UI ? locks.GetUILock()
                                                                : locks.GetProcessLock());
        plugin->SetAutomatableParam(side, {index, value});
    }
    float Get(uint32_t index = Gain, Side side = Side::Process) const
    {
        ParamValueRecord record{index, -1.0F};
        plugin->GetAutomatableParam(side, record);
        return record.value;
    }
};

inline std::vector<float> Impulse(std::size_t frames)
{
    std::vector<float> samples(frames, 0.0F);
    samples[0] = 1.0F;
    return samples;
}

inline std::ptrdiff_t PeakOf(const std::vector<float>& samples)
{
    return std::max_element(samples.begin(), samples.end()) - samples.begin();
}

/// For tests of the state: the element is made anew for each format.
class StateFixture : public Fixture {
protected:
    StateFixture() { factory.boxLivesOn = false; }

    void SetGain(float value) { Set(Gain, value); }
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

} // namespace PluginRig
