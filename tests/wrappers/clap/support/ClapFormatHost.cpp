// SPDX-License-Identifier: ISC
#include "tests/contract/support/FormatHost.h"
#include "tests/wrappers/clap/support/ClapHost.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

namespace Contract {

namespace {

using ClapHost::InputEvents;

/// Values go in as events of the next block.
class ClapFormatHost final : public FormatHost {
public:
    explicit ClapFormatHost(uint32_t newChannels)
        : channels(newChannels)
    {
        if (*plugin && !plugin->SelectConfig(channels)) {
            std::abort(); // all layouts of the contract are there
        }
    }

    ~ClapFormatHost() override
    {
        plugin.reset(); // its end may break rules, too
        for (const std::string& fault : host.GetFaults()) {
            std::fprintf(stderr, "the plug-in broke a rule: %s\n", fault.c_str());
            std::abort();
        }
    }

    explicit operator bool() const { return static_cast<bool>(*plugin); }

    bool Activate(double newRate, uint32_t /*longestBlock*/) override
    {
        const uint32_t former = host.latencyChanges;
        const bool isDone = plugin->Activate(newRate);
        // What it has asked the restart for is no news.
        latencyReports += isRestartDue ? 0 : host.latencyChanges - former;
        isRestartDue = isRestartDue && !isDone;
        return isDone;
    }

    void Deactivate() override { plugin->Deactivate(); }

    void Process(const float* const* inputs, float* const* outputs, uint32_t frames) override
    {
        const InputEvents* events = nullptr;
        InputEvents due;
        {
            const std::lock_guard guard(mutex);
            for (const auto& [id, value] : waiting) {
                due.AddValue(0, id, value);
                events = &due;
            }
            waiting.clear();
        }
        plugin->Process(inputs, outputs, channels, frames, events);
    }

    void Reset() override { plugin->Reset(); }

    uint32_t GetLatency() override { return plugin->GetLatency(); }

    std::optional<uint32_t> CountLatencyReports() override { return latencyReports; }

    void Idle() override
    {
        const uint32_t former = host.restarts;
        plugin->Idle();
        latencyReports += host.restarts - former;
        isRestartDue = isRestartDue || host.restarts != former;
    }

    uint32_t CountParameters() override { return plugin->CountParameters(); }

    void SetParameter(uint32_t index, float normalised) override
    {
        const clap_param_info_t info = plugin->Describe(index);
        const double range = info.max_value - info.min_value;
        const std::lock_guard guard(mutex);
        waiting.emplace_back(info.id, info.min_value + static_cast<double>(normalised) * range);
    }

    float GetParameter(uint32_t index) override
    {
        const clap_param_info_t info = plugin->Describe(index);
        return static_cast<float>((plugin->GetValue(info.id) - info.min_value) /
                                  (info.max_value - info.min_value));
    }

    std::vector<uint8_t> Save() override { return plugin->Save(); }
    bool Load(std::span<const uint8_t> bytes) override { return plugin->Load(bytes); }
    std::vector<uint8_t> MakeSession(std::span<const uint8_t> chunk) override
    {
        return ClapHost::MakeSession(chunk);
    }

private:
    const uint32_t channels;
    ClapHost::Host host;
    std::optional<ClapHost::Plugin> plugin{std::in_place, host};
    uint32_t latencyReports = 0;
    bool isRestartDue = false;
    std::mutex mutex;
    std::vector<std::pair<clap_id, double>> waiting; // guarded by the mutex
};

bool ScanClap(void* library)
{
    const auto* entry = static_cast<const clap_plugin_entry_t*>(dlsym(library, "clap_entry"));
    if (entry == nullptr || !entry->init(PUFFGUARD_CLAP)) {
        return false;
    }
    const auto* factory =
        static_cast<const clap_plugin_factory_t*>(entry->get_factory(CLAP_PLUGIN_FACTORY_ID));
    const clap_plugin_descriptor_t* descriptor =
        factory != nullptr && factory->get_plugin_count(factory) == 1
            ? factory->get_plugin_descriptor(factory, 0)
            : nullptr;
    bool isDone = false;
    if (descriptor != nullptr) {
        ClapHost::Host host;
        const clap_plugin_t* plugin = factory->create_plugin(factory, host.Get(), descriptor->id);
        isDone = plugin != nullptr && plugin->init(plugin);
        if (plugin != nullptr) {
            plugin->destroy(plugin);
        }
    }
    entry->deinit();
    return isDone;
}

} // namespace

std::unique_ptr<FormatHost> MakeClapHost(double /*rate*/, uint32_t channels)
{
    static const bool isLoaded = ClapHost::BeginUse();
    if (!isLoaded) {
        return nullptr;
    }
    auto host = std::make_unique<ClapFormatHost>(channels);
    return *host ? std::move(host) : nullptr;
}

FormatBinary GetClapBinary()
{
    return {PUFFGUARD_CLAP, ScanClap};
}

} // namespace Contract
