// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "restoration/plugin/LMDSPSet.h"
#include "tests/frameworks/plugincore/instance/TestDefinition.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <optional>
#include <vector>

/// An instance whose signal path is made for tests of it: one element that passes audio on, as late
/// as it is told, and writes down what it sees.
namespace RecorderRig {

using Side = DSP::Context; // `Context` is a namespace of its own

// Passes audio on, late by its parameter "Late", and writes down what it sees.
class Recorder final : public DSP::ElementDispatcher {
public:
    static constexpr uint32_t MaxLate = 100;

    Recorder(DSP::ElementHost& owner, float rate, uint32_t layout)
        : ElementDispatcher({owner, "Recorder", rate, layout})
        , line(MaxLate)
    {
        RegisterFloatParam(
            0,
            {.name = "Late",
             .range = {0, MaxLate},
             .target = &late,
             .onProcessChange =
                 [this](float value) {
                     line.SetLength(static_cast<uint32_t>(value));
                     GetHost().LatencyChanged(Side::Process);
                 },
             .onUIChange = [this](float) { GetHost().ParamChanged(*this, "Late"); }});
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

    TestDefinition definition{"Plugin"};
    mutable TestTransform* transform = nullptr;
};

struct Call {
    uint32_t opcode;
    uint32_t context;
    uint32_t word;
    bool operator==(const Call&) const = default;
};

enum : uint32_t { Bypass = 0, Late = 1 };

class RecorderTest : public testing::Test {
protected:
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
        auto& test = *static_cast<RecorderTest*>(refcon);
        const uint32_t word = data != nullptr ? *static_cast<uint32_t*>(data) : 0;
        test.calls.push_back({opcode, context, word});
        if (opcode == HostOpcodeLatencyChanged && test.onLatencyChanged) {
            test.onLatencyChanged();
        }
        return opcode == HostOpcodeLatencyChanged ? PluginCoreSuccess : PluginCoreUnsupported;
    }

    Recorder& Create(float rate = 48000.0F, uint32_t layout = 0)
    {
        PluginSetup setup = MakeSetup(Answer, this, options);
        setup.sampleRate = rate;
        setup.channelConfig = layout;
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
        const Util::CriticalSectionGuard guard(plugin->GetProcessLock());
        plugin->process(record);
    }

    void Settle()
    {
        const Util::CriticalSectionGuard guard(plugin->GetProcessLock());
        plugin->onSettle();
    }

    void Set(uint32_t index, float value, Side context = Side::UI)
    {
        ThreadController& locks = plugin->GetThreadController();
        const Util::CriticalSectionGuard guard(context == Side::UI ? locks.GetUILock()
                                                                   : locks.GetProcessLock());
        plugin->SetAutomatableParam(context, {index, value});
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

} // namespace RecorderRig
