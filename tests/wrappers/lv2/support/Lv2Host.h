// SPDX-License-Identifier: ISC
#pragma once

#include <lv2/core/lv2.h>
#include <lv2/log/log.h>
#include <lv2/state/state.h>
#include <lv2/urid/urid.h>

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// A small host of the built bundle.
namespace Lv2Host {

using Audio = std::vector<std::vector<float>>;

/// Indices of ports, as the bundle's documents number them.
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
    const LV2_Feature* all[3];
};

/// The descriptor of a plug-in by the end of its URI; null when the bundle has none.
const LV2_Descriptor* Find(const std::string& name);

/// One plug-in from instantiate() to cleanup().
class Instance {
public:
    /// Null features stand for a host that offers none.
    Instance(const std::string& name, uint32_t newChannels, double rate, Features* newFeatures);
    ~Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;

    explicit operator bool() const { return handle != nullptr; }
    uint32_t GetChannels() const { return channels; }

    void Connect(uint32_t port, float* data) { descriptor->connect_port(handle, port, data); }
    void ConnectAudio(uint32_t channel, float* input, float* output);
    /// Gives all control ports memory with the defaults, and the latency a place.
    void ConnectControls();
    void Activate() { descriptor->activate(handle); }
    void Deactivate() { descriptor->deactivate(handle); }
    void Run(uint32_t frames) { descriptor->run(handle, frames); }
    /// Runs everything in place, in blocks of `block` frames.
    void Run(Audio& audio, uint32_t block);

    LV2_State_Status Save(std::optional<Saved>& saved) const;
    LV2_State_Status Restore(const std::optional<Saved>& saved);

    float controls[5] = {5.0F, 5.0F, 200.0F, 1.0F, -1.0F};

private:
    const LV2_State_Interface& StateInterface() const;

    const uint32_t channels;
    const LV2_Descriptor* const descriptor;
    LV2_Handle handle;
};

} // namespace Lv2Host
