// SPDX-License-Identifier: ISC
#include "tests/contract/support/AudioCall.h"
#include "tests/contract/support/FormatHost.h"
#include "tests/wrappers/vst3/support/Vst3Host.h"

#include <array>
#include <limits>
#include <mutex>
#include <random>

namespace Contract {

namespace {

using Vst3Host::Changes;
using Vst3Host::Stream;

/// A transport that plays on, jumps and loops, stands still, is missing or holds rubbish.
class AnyTransport {
public:
    /// Of the next block; null where there is none.
    v3_process_context* Next(uint32_t frames, double rate)
    {
        const int64_t goneOn = context.project_time_in_samples + frames;
        switch (engine() % 4) {
        case 0:
            return nullptr;
        case 1:
            context = {};
            context.project_time_in_samples = static_cast<int64_t>(engine() % 100'000) - 50'000;
            break;
        case 2:
            context.project_time_in_samples = goneOn;
            break;
        default:
            for (size_t i = 0; i < sizeof context; ++i) {
                reinterpret_cast<uint8_t*>(&context)[i] = static_cast<uint8_t>(engine());
            }
            context.project_time_in_samples /= 2; // to go on from
        }
        constexpr double none = std::numeric_limits<double>::quiet_NaN();
        context.sample_rate = std::array{rate, 0.0, none, -rate}[engine() % 4];
        context.state = engine() % 4 == 0 ? static_cast<uint32_t>(engine())
                                          : static_cast<uint32_t>(V3_PROCESS_CTX_PLAYING);
        return &context;
    }

private:
    std::mt19937 engine{1};
    v3_process_context context = {};
};

/// The transport is of no account in the audio.
class Vst3FormatHost final : public FormatHost {
public:
    Vst3FormatHost(double rate, uint32_t channels)
        : audioRate(rate)
        , plugin(channels, rate, &host)
    {
    }

    explicit operator bool() const { return static_cast<bool>(plugin); }

    bool Activate(double rate, uint32_t longestBlock) override
    {
        if (plugin.Setup(rate, static_cast<int32_t>(longestBlock)) != V3_OK) {
            return false;
        }
        audioRate = rate;
        plugin.Start();
        return true;
    }
    void Deactivate() override { plugin.Stop(); }

    void Process(const float* const* inputs, float* const* outputs, uint32_t frames) override
    {
        Changes changes;
        {
            const std::lock_guard<std::mutex> lock(mutex);
            for (const auto& [index, value] : waiting) {
                changes.Add(plugin.parameters[index].param_id, {{0, value}});
            }
            waiting.clear();
        }
        v3_process_context* const context = transport.Next(frames, audioRate);
        plugin.Process(inputs, outputs, frames, {&changes, nullptr, context});
    }
    void Reset() override
    {
        for (const bool isProcessing : {false, true}) {
            const AudioCall scope;
            plugin.processor->SetProcessing(isProcessing ? 1 : 0);
        }
    }

    uint32_t GetLatency() override { return plugin.processor->GetLatencySamples(); }
    std::optional<uint32_t> CountLatencyReports() override
    {
        return static_cast<uint32_t>(
            std::count(host.heard.begin(),
                       host.heard.end(),
                       "restart " + std::to_string(V3_RESTART_LATENCY_CHANGED)));
    }
    void Idle() override { host.Tick(); }

    uint32_t CountParameters() override { return static_cast<uint32_t>(plugin.parameters.size()); }
    // To be heard, and to be shown.
    void SetParameter(uint32_t index, float normalised) override
    {
        const auto value = static_cast<double>(normalised);
        plugin.controller->SetValue(plugin.parameters[index].param_id, value);
        const std::lock_guard<std::mutex> lock(mutex);
        std::erase_if(waiting, [&](const auto& one) { return one.first == index; });
        waiting.emplace_back(index, value);
    }
    std::optional<float> GetParameter(uint32_t index) override
    {
        return static_cast<float>(plugin.controller->GetValue(plugin.parameters[index].param_id));
    }

    std::vector<uint8_t> Save() override { return plugin.Save(); }
    bool Load(std::span<const uint8_t> bytes) override
    {
        Stream stream({bytes.begin(), bytes.end()});
        if (plugin.Load(bytes) != V3_OK || plugin.controller->SetComponentState(&stream) != V3_OK) {
            return false;
        }
        const std::lock_guard<std::mutex> lock(mutex);
        waiting.clear();
        return true;
    }
    std::vector<uint8_t> MakeSession(std::span<const uint8_t> chunk) override
    {
        constexpr std::array<uint8_t, 6> head = {'P', 'g', 'S', 's', 1, 0};
        std::vector<uint8_t> session(head.size() + chunk.size());
        std::copy(head.begin(), head.end(), session.begin());
        std::copy(chunk.begin(), chunk.end(), session.begin() + head.size());
        return session;
    }

private:
    double audioRate;       // of the audio thread, which doesn't run while it changes
    AnyTransport transport; // of the audio thread
    Vst3Host::Host host;
    Vst3Host::Plugin plugin;
    std::mutex mutex;
    std::vector<std::pair<uint32_t, double>> waiting; // guarded by mutex
};

bool ScanVst3(void* library)
{
    const Vst3Host::Held<Vst3Host::IFactory> factory = Vst3Host::GetFactory(library);
    if (factory == nullptr || factory->CountClasses() != 1) {
        return false;
    }
    const Vst3Host::Held<Vst3Host::IComponent> component = Vst3Host::Create(*factory);
    return component != nullptr && component->Initialize(nullptr) == V3_OK &&
           component->GetBusCount(V3_AUDIO, V3_INPUT) == 1 && component->Terminate() == V3_OK;
}

} // namespace

std::unique_ptr<FormatHost> MakeVst3Host(double rate, uint32_t channels)
{
    auto host = std::make_unique<Vst3FormatHost>(rate, channels);
    return *host ? std::move(host) : nullptr;
}

FormatBinary GetVst3Binary()
{
    return {Vst3Host::BinaryPath(), ScanVst3};
}

} // namespace Contract
