// SPDX-License-Identifier: ISC
#include "tests/contract/support/FormatHost.h"
#include "tests/wrappers/vst3/support/Vst3Host.h"

#include <array>
#include <mutex>

namespace Contract {

namespace {

using Vst3Host::Changes;
using Vst3Host::Stream;

class Vst3FormatHost final : public FormatHost {
public:
    Vst3FormatHost(double rate, uint32_t channels)
        : plugin(channels, rate, &host)
    {
        transport.state = V3_PROCESS_CTX_PLAYING;
    }

    explicit operator bool() const { return static_cast<bool>(plugin); }

    bool Activate(double rate, uint32_t longestBlock) override
    {
        if (plugin.Setup(rate, static_cast<int32_t>(longestBlock)) != V3_OK) {
            return false;
        }
        transport.sample_rate = rate;
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
        plugin.Process(inputs, outputs, frames, {&changes, nullptr, &transport});
        transport.project_time_in_samples += frames;
    }
    void Reset() override
    {
        plugin.processor->SetProcessing(0);
        plugin.processor->SetProcessing(1);
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
    float GetParameter(uint32_t index) override
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
    Vst3Host::Host host;
    Vst3Host::Plugin plugin;
    v3_process_context transport = {};
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
