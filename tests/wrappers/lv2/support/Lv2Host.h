// SPDX-License-Identifier: ISC
#pragma once

#include "tests/contract/support/FormatHost.h"
#include "tests/contract/support/HostParts.h"

#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>

#include <array>
#include <atomic>
#include <string>

/// A small host of the built bundle.
namespace Lv2Host {

/// Indices of ports, as the bundle's documents number them. The first ones stand in the order of
/// the module's parameters; "enabled" is the opposite of a bypass.
enum Port : uint32_t { Sensitivity, Strength, UpperFrequency, Enabled, Latency, FirstAudio };

/// A session's property.
struct Saved {
    uint32_t key = 0;
    uint32_t type = 0;
    std::vector<uint8_t> bytes;
};

/// What the host offers its plug-ins.
class Features {
public:
    Features();
    Features(const Features&) = delete;
    Features& operator=(const Features&) = delete;

    const LV2_Feature* const* All() const { return all; }
    uint32_t Map(const std::string& uri);

    std::vector<std::string> logged;

private:
    std::vector<std::string> uris;
    LV2_URID_Map map;
    LV2_Log_Log log;
    LV2_Feature mapFeature;
    LV2_Feature logFeature;
    const LV2_Feature* all[3] = {&logFeature, &mapFeature, nullptr};
};

/// One plug-in from instantiate() to cleanup(). Values are ports, which are the host's own memory:
/// it keeps them with the session, behind what the plug-in saves.
class Plugin final : public Contract::FormatHost {
public:
    /// A bare host has no features and connects no control ports.
    enum class Manner { Full, Bare };

    /// `newChannels` is 1, 2, 6 or 8.
    Plugin(uint32_t newChannels, double newRate, Manner manner = Manner::Full);
    ~Plugin() override;

    explicit operator bool() const { return handle != nullptr; }

    void Connect(uint32_t port, float* data) { descriptor->connect_port(handle, port, data); }
    /// A block with the memory that is connected.
    void Run(uint32_t frames);
    LV2_State_Status Store(std::optional<Saved>& saved) const;
    LV2_State_Status Restore(const std::optional<Saved>& saved);
    /// A property that a plug-in of ours understands.
    Saved MakeSaved(std::span<const uint8_t> chunk);

    bool Activate(double newRate, uint32_t longestBlock) override;
    void Deactivate() override { descriptor->deactivate(handle); }
    void Process(const float* const* inputs, float* const* outputs, uint32_t frames) override;
    void Reset() override;
    uint32_t GetLatency() override { return latency; }
    std::optional<uint32_t> CountLatencyReports() override { return std::nullopt; }
    uint32_t CountParameters() override { return Latency; }
    void SetParameter(uint32_t index, float normalised) override;
    std::optional<float> GetParameter(uint32_t index) override;
    std::vector<uint8_t> Save() override;
    bool Load(std::span<const uint8_t> bytes) override;
    std::vector<uint8_t> MakeSession(std::span<const uint8_t> chunk) override;

    Features features;

private:
    using PortValues = std::array<float, Latency>;

    std::vector<uint8_t> SaveChunk() const;
    const LV2_State_Interface& StateInterface() const;

    const Contract::Library library;
    const uint32_t channels;
    const double rate;
    const LV2_Descriptor* const descriptor;
    LV2_Handle handle;
    std::array<float, FirstAudio> controls{}; // what the ports are connected to
    std::array<std::atomic<float>, Latency> wanted{};
    std::atomic<uint32_t> latency{0};
};

} // namespace Lv2Host
