// SPDX-License-Identifier: ISC
// The instance with a signal path made for the test: how blocks are cut, how the two latencies and
// the dry path follow settings, and what the host is told.
#include "frameworks/plugincore/Plugin.h"

#include "frameworks/plugincore/Entry.h"
#include "frameworks/plugincore/dsp/ElementDispatcher.h"
#include "restoration/plugin/LMDSPSet.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <functional>
#include <future>
#include <limits>
#include <new>
#include <thread>
#include <vector>

namespace {

using Side = DSP::Context; // `Context` is a namespace of its own

// Passes audio on, late by its parameter "Late", and writes down what it sees.
class Recorder final : public DSP::ElementDispatcher {
public:
    static constexpr uint32_t MaxLate = 100;

    Recorder(DSP::ElementHost& owner, float rate, uint32_t layout)
        : ElementDispatcher({owner, "Recorder", rate, layout})
        , line(MaxLate)
    {
        DSP::ParamRegistration<float> registration;
        registration.name = "Late";
        registration.range = {0, MaxLate};
        registration.target = &late;
        registration.onProcessChange = [this](float value) {
            line.SetLength(static_cast<uint32_t>(value));
            GetHost().LatencyChanged(Side::Process);
        };
        registration.onUIChange = [this](float) { GetHost().ParamChanged(*this, "Late"); };
        RegisterFloatParam(0, registration);
        FinaliseParams();
    }

    bool IsConfigurable() const override { return true; }

    std::vector<uint32_t> chunks;
    std::vector<std::optional<int64_t>> positions;
    std::vector<uint64_t> processPositions;
    uint32_t resets = 0;
    bool wasOnUIThread = true;
    bool refusesStereo = false;
    bool refusesStereoLate = false; // when the delays are planned

protected:
    uint32_t GetLatencySamples(Side) const override { return static_cast<uint32_t>(late); }
    uint32_t GetMaxLatencySamples() const override
    {
        if (refusesStereoLate && GetChannelCount() == 2) {
            throw std::bad_alloc();
        }
        return MaxLate;
    }
    void OnReset() override
    {
        ++resets;
        line.Clear();
    }
    void OnFormatChanged() override
    {
        if (refusesStereo && GetChannelCount() == 2) {
            throw std::bad_alloc();
        }
    }
    void ProcessAudio(uint32_t frames, float* const* channels) override
    {
        chunks.push_back(frames);
        positions.push_back(GetHost().GetTransportPosition());
        processPositions.push_back(GetHost().GetProcessPosition());
        wasOnUIThread = GetHost().IsUIThread();
        line.Process(channels[0], channels[0], frames);
    }

private:
    DSP::DelayLine line;
    float late = 0;
};

class TestTransform final : public DSP::TransformBase {
public:
    TestTransform(DSP::ElementHost& owner, float rate, uint32_t layout)
        : TransformBase(owner,
                        std::make_unique<DSP::LMDSPSet>(
                            owner,
                            "Main",
                            [](DSP::ElementHost& instance, float hz, uint32_t config) {
                                return std::make_shared<Recorder>(instance, hz, config);
                            }),
                        "Bypass\tGlobal\tGlobal Bypass\r\n"
                        "Late\tMain\tLate\r\n")
    {
        SetFormat(rate, layout);
    }
    Recorder& GetRecorder() const { return dynamic_cast<Recorder&>(*GetSet().GetMainElement()); }
};

class Definition final : public PluginDefinition {
public:
    String GetVendor() const override { return "Test"; }
    String GetShortName() const override { return "Plugin"; }
    uint32_t GetMaxBlockFrames() const override { return maxBlockFrames; }
    uint32_t maxBlockFrames = 8192;
};

class Factory final : public PluginFactory {
public:
    const PluginDefinition& GetDefinition() const override { return definition; }
    std::unique_ptr<DSP::TransformBase>
    CreateTransform(DSP::ElementHost& host, float rate, uint32_t layout) const override
    {
        auto made = std::make_unique<TestTransform>(host, rate, layout);
        transform = made.get();
        return made;
    }

    Definition definition;
    mutable TestTransform* transform = nullptr;
};

struct Call {
    uint32_t opcode;
    uint32_t context;
    uint32_t word;
    bool operator==(const Call&) const = default;
};

enum : uint32_t { Bypass = 0, Late = 1 };

struct PluginTest : testing::Test {
    const Support::UserFolders folders;
    Util::ConfigFile settings{"SOFTWARE/Test/Plugin"};
    Factory factory;
    std::vector<Call> calls;
    std::function<void()> onLatencyChanged;
    const char* options = "";
    std::unique_ptr<Plugin> plugin;

    static uint32_t
    Answer(uint32_t /*magic*/, uint32_t opcode, uint32_t context, void* refcon, void* data)
    {
        auto& test = *static_cast<PluginTest*>(refcon);
        const uint32_t word = data != nullptr ? *static_cast<uint32_t*>(data) : 0;
        test.calls.push_back({opcode, context, word});
        if (opcode == HostOpcodeLatencyChanged && test.onLatencyChanged) {
            test.onLatencyChanged();
        }
        return opcode == HostOpcodeLatencyChanged ? PluginCoreSuccess : PluginCoreUnsupported;
    }

    Recorder& Create(float rate = 48000.0F, uint32_t layout = 0)
    {
        PluginSetup setup;
        setup.hostCallback = Answer;
        setup.hostRefcon = this;
        setup.sampleRate = rate;
        setup.channelConfig = layout;
        std::strcpy(setup.identity.options, options);
        plugin = std::make_unique<Plugin>(factory, setup);
        plugin->Initialize();
        calls.clear();
        return factory.transform->GetRecorder();
    }

    void Process(std::vector<float>& samples, TransportRecord* transport = nullptr)
    {
        float* channels[] = {samples.data(), nullptr, nullptr};
        ProcessRecord record{};
        record.frames = static_cast<uint32_t>(samples.size());
        record.channels = channels;
        record.transport = transport;
        plugin->process(record);
    }

    void Set(uint32_t index, float value, Side context = Side::UI)
    {
        plugin->SetAutomatableParam(context, {index, value});
    }
};

std::vector<float> Impulse(std::size_t frames)
{
    std::vector<float> samples(frames, 0.0F);
    samples[0] = 1.0F;
    return samples;
}

std::ptrdiff_t PeakOf(const std::vector<float>& samples)
{
    return std::max_element(samples.begin(), samples.end()) - samples.begin();
}

} // namespace

TEST_F(PluginTest, CutsALongBlockAndAdvancesThePosition)
{
    Recorder& recorder = Create();
    TransportRecord transport{};
    transport.position = 999.6;
    transport.isPositionValid = 1;
    std::vector<float> samples(20000);
    Process(samples, &transport);
    EXPECT_EQ(recorder.chunks, (std::vector<uint32_t>{8192, 8192, 3616}));
    EXPECT_EQ(recorder.positions, (std::vector<std::optional<int64_t>>{1000, 9192, 17384}));
    EXPECT_EQ(recorder.processPositions, (std::vector<uint64_t>{0, 8192, 16384}));
    EXPECT_EQ(transport.position, 999.6); // the caller's record stays
    EXPECT_FALSE(recorder.wasOnUIThread);
    EXPECT_TRUE(plugin->IsUIThread());

    Process(samples); // without a transport there is no position
    EXPECT_EQ(recorder.positions.back(), std::nullopt);
    plugin->onSettle();
    Process(samples);
    EXPECT_EQ(recorder.processPositions.back(), 16384U);
}

TEST_F(PluginTest, TakesTheLargestChunkFromTheDefinition)
{
    factory.definition.maxBlockFrames = 1024;
    Recorder& recorder = Create();
    std::vector<float> samples(2100);
    Process(samples);
    EXPECT_EQ(recorder.chunks, (std::vector<uint32_t>{1024, 1024, 52}));
}

TEST_F(PluginTest, ReplacesNonFiniteSamplesBeforeAnyElementSeesThem)
{
    Create();
    std::vector<float> samples{1.0F,
                               std::numeric_limits<float>::quiet_NaN(),
                               std::numeric_limits<float>::infinity(),
                               -std::numeric_limits<float>::infinity(),
                               1e30F,
                               -2.0F};
    Process(samples);
    EXPECT_EQ(samples, (std::vector<float>{1.0F, 0.0F, 0.0F, 0.0F, 0.0F, -2.0F}));
}

TEST_F(PluginTest, ReportsALatencyOnceToEachSideWhileNoAudioRuns)
{
    Create();
    Set(Late, 0.5F);
    EXPECT_EQ(calls, (std::vector<Call>{{2, 0, 50}, {2, 1, 50}}));
    EXPECT_EQ(plugin->GetLatency(Side::Process), 50U);
    Set(Late, 0.5F);
    EXPECT_EQ(calls.size(), 2U);
}

TEST_F(PluginTest, LeavesTheUISidesHalfToTheTickWhileAudioRuns)
{
    Create();
    std::vector<float> samples(64);
    Process(samples);
    EXPECT_TRUE(plugin->IsProcessing());
    Set(Late, 0.25F, Side::Process);
    EXPECT_EQ(calls, (std::vector<Call>{{2, 0, 25}}));
    // From the other side: the command waits for the next block, and that tells the process side.
    Set(Late, 0.75F);
    EXPECT_EQ(plugin->GetLatency(Side::Process), 25U);
    Process(samples);
    EXPECT_EQ(plugin->GetLatency(Side::Process), 75U);
    plugin->SetProcessingState(Side::UI, false, false);
    EXPECT_FALSE(plugin->IsProcessing());
}

TEST_F(PluginTest, AddsTheHostsOwnDelayToTheUIFigureOnly)
{
    PluginSetup setup;
    setup.sampleRate = 48000.0F;
    setup.hostCallback = [](uint32_t, uint32_t opcode, uint32_t, void*, void* data) -> uint32_t {
        if (opcode == HostOpcodeGetHostDelay) {
            *static_cast<uint32_t*>(data) = 7;
            return PluginCoreSuccess;
        }
        return PluginCoreUnsupported;
    };
    const Plugin withDelay(factory, setup);
    EXPECT_EQ(withDelay.GetLatency(Side::Process), 0U);
    EXPECT_EQ(withDelay.GetLatency(Side::UI), 7U);
}

TEST_F(PluginTest, BypassDelaysTheInputByTheReportedLatency)
{
    Recorder& recorder = Create();
    Set(Late, 0.4F);
    for (const bool bypassed : {false, true}) {
        Set(Bypass, bypassed ? 1.0F : 0.0F);
        plugin->onSettle();
        std::vector<float> samples = Impulse(200);
        Process(samples);
        EXPECT_EQ(PeakOf(samples), 40) << bypassed;
    }
    // While bypassed the element doesn't run, and it starts from its reset state afterwards.
    const std::size_t before = recorder.chunks.size();
    const uint32_t resets = recorder.resets;
    std::vector<float> samples(100, 1.0F);
    Process(samples);
    EXPECT_EQ(recorder.chunks.size(), before);
    Set(Bypass, 0.0F);
    Process(samples);
    EXPECT_EQ(recorder.chunks.size(), before + 1);
    EXPECT_EQ(resets, recorder.resets); // it had heard nothing since: no second reset
    EXPECT_EQ(samples[39], 0.0F);       // one latency of silence
}

TEST_F(PluginTest, FrozenDelayIsToldAndDelaysTheDryPathWhateverTheSum)
{
    settings.WriteInt("FrozenSystemDelay", 512); // above the elements' longest
    Create();
    Set(Late, 1.0F);
    EXPECT_EQ(plugin->GetLatency(Side::Process), 512U);
    Set(Bypass, 1.0F);
    std::vector<float> samples = Impulse(1000);
    Process(samples);
    EXPECT_EQ(PeakOf(samples), 512);
}

TEST_F(PluginTest, WithoutCompensationTheHostIsToldZero)
{
    settings.WriteBool("DelayCompensationEnable", false);
    settings.WriteInt("FrozenSystemDelay", 5);
    Create();
    Set(Late, 1.0F);
    EXPECT_TRUE(calls.empty());
    EXPECT_EQ(plugin->GetLatency(Side::UI), 0U);
    Set(Bypass, 1.0F);
    std::vector<float> samples = Impulse(10);
    Process(samples);
    EXPECT_EQ(PeakOf(samples), 0);
}

TEST_F(PluginTest, TakesADelayFromTheSettingsOnlyWhenItCanBeAndIsOnline)
{
    settings.WriteInt("FrozenSystemDelay", -3);
    EXPECT_EQ((Create(), plugin->GetLatency(Side::UI)), 0U);
    settings.WriteInt("FrozenSystemDelay", 2'000'000'000); // gigabytes of dry lines
    EXPECT_EQ((Create(), plugin->GetLatency(Side::UI)), 0U);
    settings.WriteInt("FrozenSystemDelay", 7);
    EXPECT_EQ((Create(), plugin->GetLatency(Side::UI)), 7U);
    options = "Lang:de|Offline";
    EXPECT_EQ((Create(), plugin->GetLatency(Side::UI)), 0U);
}

TEST_F(PluginTest, NewFormatKeepsElementsAndValuesAndStartsSilent)
{
    Recorder& recorder = Create();
    Set(Late, 0.5F);
    std::vector<float> samples(300, 1.0F);
    Process(samples);
    plugin->SetStreamFormat(48000.0F, 1);
    EXPECT_EQ(&factory.transform->GetRecorder(), &recorder);
    EXPECT_EQ(recorder.GetChannelCount(), 2U);
    EXPECT_EQ(plugin->GetLatency(Side::Process), 50U);
    Set(Bypass, 1.0F);
    samples.assign(300, 0.0F);
    Process(samples); // nothing of the former audio is left in the dry lines
    EXPECT_EQ(samples, std::vector<float>(300, 0.0F));

    const uint32_t resets = recorder.resets;
    plugin->SetStreamFormat(48000.0F, 1); // the same
    plugin->SetStreamFormat(0.0F, 1);
    plugin->SetStreamFormat(std::numeric_limits<float>::quiet_NaN(), 1);
    plugin->SetStreamFormat(96000.0F, 35);
    EXPECT_EQ(recorder.resets, resets);
    EXPECT_EQ(recorder.GetSampleRate(), 48000.0F);
}

// The host answers a new latency by a new layout while the block of the old one, or the parameter's
// own callback, is still on the stack.
TEST_F(PluginTest, DoesNotChangeItsFormatUnderARunningSignalPath)
{
    Recorder& recorder = Create();
    onLatencyChanged = [this] { plugin->SetStreamFormat(48000.0F, 1); };
    std::vector<float> samples(64);
    Process(samples);
    Set(Late, 0.5F); // waits in the ring
    Process(samples);
    EXPECT_EQ(plugin->GetLatency(Side::Process), 50U);
    EXPECT_EQ(recorder.GetChannelCount(), 1U);
    plugin->SetProcessingState(Side::UI, false, false);
    Set(Late, 0.25F); // runs at once
    EXPECT_EQ(recorder.GetChannelCount(), 1U);
    onLatencyChanged = nullptr;
    plugin->SetStreamFormat(48000.0F, 1);
    EXPECT_EQ(recorder.GetChannelCount(), 2U);
}

TEST_F(PluginTest, ACallFromWithinTheSignalPathDoesNotWaitForTheUISide)
{
    Recorder& recorder = Create();
    std::promise<void> held;
    std::promise<void> done;
    std::thread other([&] {
        const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetUILock());
        held.set_value();
        done.get_future().wait();
    });
    held.get_future().wait();
    onLatencyChanged = [this] {
        StreamFormatRecord record{96000.0F, 1};
        for (const uint32_t selector : {SelectorSetStreamFormat, SelectorTerminate}) {
            DispatchEntryCall(factory, PLUGIN_CORE_MAGIC, selector, 0, plugin.get(), &record);
        }
    };
    Set(Late, 0.5F, Side::Process); // ends by the test's time limit when the call waits
    done.set_value();
    other.join();
    EXPECT_FALSE(calls.empty());
    EXPECT_EQ(recorder.GetChannelCount(), 1U);
}

TEST_F(PluginTest, StaysAsItWasWhenANewFormatFails)
{
    Recorder& recorder = Create();
    for (bool Recorder::*refusal : {&Recorder::refusesStereo, &Recorder::refusesStereoLate}) {
        recorder.*refusal = true;
        EXPECT_THROW(plugin->SetStreamFormat(96000.0F, 1), std::bad_alloc);
        EXPECT_EQ(recorder.GetSampleRate(), 48000.0F);
        EXPECT_EQ(recorder.GetChannelCount(), 1U);
        std::vector<float> samples = Impulse(10);
        Process(samples);
        EXPECT_EQ(PeakOf(samples), 0);
        recorder.*refusal = false;
    }
    plugin->SetStreamFormat(96000.0F, 1); // the same request again is heard
    EXPECT_EQ(recorder.GetChannelCount(), 2U);
}

TEST_F(PluginTest, FallsBackWhenItIsCreatedForAFormatThatCannotBe)
{
    Recorder& recorder = Create(-1.0F, 35);
    EXPECT_EQ(recorder.GetSampleRate(), 44100.0F);
    EXPECT_EQ(recorder.GetChannelCount(), 1U);
}

TEST_F(PluginTest, HostSetsAreNotEchoedOthersAre)
{
    Recorder& recorder = Create();
    Set(Late, 0.5F);
    calls.clear();
    recorder.SetFloatValue(0, 25.0F, Side::UI, DSP::SourceController);
    ASSERT_GE(calls.size(), 2U);
    EXPECT_EQ(calls[calls.size() - 2], (Call{1, 1, 1})); // kind 1: value changed
    EXPECT_EQ(calls.back(), (Call{16, 1, 0}));           // and with it the state
    calls.clear();
    Set(Late, 0.5F);
    for (const Call& call : calls) {
        EXPECT_EQ(call.opcode, static_cast<uint32_t>(HostOpcodeLatencyChanged));
    }
}

// The process side has moved on to 0.2; setting the UI side's stale 0.5 again must not be lost.
TEST_F(PluginTest, SettingAnEqualButStaleValueStillArrives)
{
    Create();
    Set(Late, 0.5F);
    Set(Late, 0.2F, Side::Process);
    Set(Late, 0.5F);
    ParamValueRecord record{Late, 0.0F};
    plugin->GetAutomatableParam(Side::Process, record);
    EXPECT_EQ(record.value, 0.5F);
}

TEST_F(PluginTest, KnowsWhoMayChangeTheSignalPath)
{
    Create();
    EXPECT_TRUE(plugin->MayChangeDSP()); // nothing runs
    std::thread audio([&] {
        std::vector<float> samples(10);
        Process(samples);
        EXPECT_TRUE(plugin->MayChangeDSP()); // the last to process
    });
    audio.join();
    EXPECT_FALSE(plugin->MayChangeDSP());
    EXPECT_TRUE(plugin->RecentlyProcessed());
    plugin->SetProcessingState(Side::UI, false, false);
    EXPECT_TRUE(plugin->MayChangeDSP());
}
