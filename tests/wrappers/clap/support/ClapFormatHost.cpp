// SPDX-License-Identifier: ISC
#include "tests/contract/support/FormatHost.h"
#include "tests/wrappers/clap/support/ClapHost.h"

#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <random>
#include <utility>

namespace Contract {

namespace {

using ClapHost::InputEvents;

/// A transport that goes on, jumps and loops, stands still, is missing or holds rubbish.
class AnyTransport {
public:
    /// Of the next block; null where there is none.
    const clap_event_transport_t* Next()
    {
        constexpr auto head = sizeof transport.header;
        switch (engine() % 4) {
        case 0:
            return nullptr;
        case 1:
            transport = InputEvents::MakeTransport(0, AnyTime());
            break;
        case 2:
            transport.song_pos_seconds += CLAP_SECTIME_FACTOR / 100;
            break;
        default:
            for (size_t i = head; i < sizeof transport; ++i) {
                reinterpret_cast<uint8_t*>(&transport)[i] = static_cast<uint8_t>(engine());
            }
            transport.song_pos_seconds /= 2; // to go on from
        }
        return &transport;
    }

    /// Some 50 s around the beginning, or far away.
    std::optional<double> AnyTime()
    {
        const double seconds = static_cast<double>(engine() % 100'000) / 1000 - 50;
        return engine() % 4 == 0   ? std::nullopt
               : engine() % 4 == 0 ? std::optional(1e7 * seconds)
                                   : std::optional(seconds);
    }

    /// For an event within a block.
    std::optional<uint32_t> AnyFrame(uint32_t frames)
    {
        return frames > 0 && engine() % 4 == 0
                   ? std::optional(static_cast<uint32_t>(engine() % frames))
                   : std::nullopt;
    }

private:
    std::mt19937 engine{1};
    clap_event_transport_t transport = InputEvents::MakeTransport(0, 0.0);
};

/// Values go in as events of the next block, or by themselves when it has no frames. The transport
/// is of no account in the audio.
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
        InputEvents due;
        TakeValues(due);
        if (frames == 0 && host.phase == ClapHost::Host::Phase::Active) {
            plugin->Flush(&due, nullptr);
        }
        if (const std::optional<uint32_t> frame = transport.AnyFrame(frames)) {
            due.AddTransport(*frame, transport.AnyTime());
        }
        plugin->Process(inputs, outputs, channels, frames, &due, nullptr, transport.Next());
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

    std::optional<float> GetParameter(uint32_t index) override
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
    void TakeValues(InputEvents& due)
    {
        const std::lock_guard guard(mutex);
        for (const auto& [id, value] : waiting) {
            due.AddValue(0, id, value);
        }
        waiting.clear();
    }

    const uint32_t channels;
    AnyTransport transport; // of the audio thread
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
