// SPDX-License-Identifier: ISC
#include "tests/contract/support/AudioCall.h"
#include "tests/contract/support/FormatHost.h"
#include "tests/support/ModuleHost.h"
#include "tests/wrappers/lv2/support/Lv2Host.h"

#include <lv2/atom/atom.h>

#include <dlfcn.h>

#include <array>
#include <atomic>
#include <cmath>
#include <cstring>

namespace Contract {

namespace {

using Lv2Host::Saved;

struct Range {
    float minimum;
    float maximum;
};

// By port, as the bundle's documents say; "enabled" is the opposite of a bypass.
constexpr std::array<Range, 4> ranges = {{{0, 10}, {0, 10}, {50, 500}, {1, 0}}};

/// Values are ports, which are the host's own memory: it keeps them with the session, behind what
/// the plug-in saves.
class Lv2FormatHost final : public FormatHost {
public:
    Lv2FormatHost(const char* name, double newRate, uint32_t channels)
        : rate(newRate)
        , plugin(name, channels, newRate, &features)
    {
        for (size_t port = 0; port < wanted.size(); ++port) {
            wanted[port] = plugin.controls[port];
        }
        if (plugin) {
            plugin.ConnectControls();
        }
    }

    explicit operator bool() const { return static_cast<bool>(plugin); }

    bool Activate(double newRate, uint32_t /*longestBlock*/) override
    {
        if (newRate != rate) {
            return false;
        }
        plugin.Activate();
        Run(0); // the latency shows in a port
        return true;
    }
    void Deactivate() override { plugin.Deactivate(); }

    void Process(const float* const* inputs, float* const* outputs, uint32_t frames) override
    {
        for (uint32_t c = 0; c < plugin.GetChannels(); ++c) {
            plugin.ConnectAudio(c,
                                inputs != nullptr ? const_cast<float*>(inputs[c]) : nullptr,
                                outputs != nullptr ? outputs[c] : nullptr);
        }
        Run(frames);
    }

    void Reset() override
    {
        plugin.Deactivate();
        plugin.Activate();
    }

    uint32_t GetLatency() override { return latency; }
    std::optional<uint32_t> CountLatencyReports() override { return std::nullopt; }

    uint32_t CountParameters() override { return static_cast<uint32_t>(ranges.size()); }

    void SetParameter(uint32_t index, float normalised) override
    {
        const auto [minimum, maximum] = ranges[index];
        wanted[index] = minimum + normalised * (maximum - minimum);
    }

    // The plug-in's own value stands in what it saves, in the module's form, where no bypass is.
    std::optional<float> GetParameter(uint32_t index) override
    {
        if (index == Lv2Host::Enabled) {
            return std::nullopt;
        }
        TestHost::Instance reader(48000.0F, 1);
        return reader.LoadState(SaveChunk()) ? reader.Value(index) : std::nanf("");
    }

    std::vector<uint8_t> Save() override
    {
        return WithPorts(SaveChunk(), {wanted[0], wanted[1], wanted[2], wanted[3]});
    }

    bool Load(std::span<const uint8_t> bytes) override
    {
        if (bytes.size() < sizeof(PortValues)) {
            return false;
        }
        const auto chunk = bytes.first(bytes.size() - sizeof(PortValues));
        const Saved saved = {
            features.Map(stateUri), features.Map(LV2_ATOM__Chunk), {chunk.begin(), chunk.end()}};
        if (plugin.Restore(saved) != LV2_STATE_SUCCESS) {
            return false;
        }
        PortValues values{};
        std::memcpy(values.data(), bytes.data() + chunk.size(), sizeof values);
        for (size_t port = 0; port < values.size(); ++port) {
            wanted[port] = values[port];
        }
        return true;
    }

    std::vector<uint8_t> MakeSession(std::span<const uint8_t> chunk) override
    {
        return WithPorts({chunk.begin(), chunk.end()}, {5.0F, 5.0F, 200.0F, 1.0F});
    }

private:
    using PortValues = std::array<float, ranges.size()>;
    static constexpr const char* stateUri = "https://puffguard.example/lv2/state";

    static std::vector<uint8_t> WithPorts(std::vector<uint8_t> bytes, const PortValues& values)
    {
        const size_t size = bytes.size();
        bytes.resize(size + sizeof values);
        std::memcpy(bytes.data() + size, values.data(), sizeof values);
        return bytes;
    }

    std::vector<uint8_t> SaveChunk() const
    {
        std::optional<Saved> saved;
        return plugin.Save(saved) == LV2_STATE_SUCCESS ? saved->bytes : std::vector<uint8_t>{};
    }

    // A port's memory belongs to the audio thread while it runs.
    void Run(uint32_t frames)
    {
        for (size_t port = 0; port < wanted.size(); ++port) {
            plugin.controls[port] = wanted[port];
        }
        {
            const AudioCall scope;
            plugin.Run(frames);
        }
        latency = static_cast<uint32_t>(plugin.controls[Lv2Host::Latency]);
    }

    const double rate;
    Lv2Host::Features features;
    Lv2Host::Instance plugin;
    std::array<std::atomic<float>, ranges.size()> wanted{};
    std::atomic<uint32_t> latency{0};
};

bool ScanLv2(void* library)
{
    const auto get = reinterpret_cast<LV2_Descriptor_Function>(dlsym(library, "lv2_descriptor"));
    if (get == nullptr || get(0) == nullptr) {
        return false;
    }
    uint32_t count = 0;
    while (get(count) != nullptr) {
        ++count;
    }
    const LV2_Descriptor* const last = get(count - 1);
    LV2_Handle handle = last->instantiate(last, 48000, PUFFGUARD_BUNDLE "/", nullptr);
    if (handle == nullptr) {
        return false;
    }
    last->cleanup(handle);
    return true;
}

} // namespace

std::unique_ptr<FormatHost> MakeLv2Host(double rate, uint32_t channels)
{
    const char* const name = channels == 1   ? "mono"
                             : channels == 2 ? "stereo"
                             : channels == 6 ? "surround51"
                                             : "surround71";
    auto host = std::make_unique<Lv2FormatHost>(name, rate, channels);
    return *host ? std::move(host) : nullptr;
}

FormatBinary GetLv2Binary()
{
    return {PUFFGUARD_BUNDLE "/puffguard.so", ScanLv2};
}

} // namespace Contract
