// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/Module.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Cli {

/// The controls of the effect, in its own units.
struct Controls {
    double sensitivity = 0;    ///< 0 to 10
    double strength = 0;       ///< 0 to 10
    double upperFrequency = 0; ///< Hz, 50 to 500
    double latencyScaling = 0; ///< 0 to 1
    bool bypass = false;
};

/// Controls that the user chose; the others stay as the module has them by default.
struct ChosenControls {
    std::optional<double> sensitivity;
    std::optional<double> strength;
    std::optional<double> upperFrequency;
    std::optional<double> latencyScaling;
    bool bypass = false;
};

/// One instance of the module, driven through the entry as a host drives it. All calls of one
/// object come from one thread; objects of different threads don't meet.
class Instance {
public:
    /// Makes and initialises an instance and sets its controls, before any audio runs. All controls
    /// are set, chosen or not, so that nothing kept from another session shows in the result.
    /// Throws ModuleError.
    Instance(const Module& module, int sampleRate, int channels, const ChosenControls& chosen);
    ~Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    Instance(Instance&&) = delete;
    Instance& operator=(Instance&&) = delete;

    const Controls& GetControls() const { return controls; }

    /// By how much the output is late, in samples.
    uint32_t GetLatency() const { return latency; }

    /// Processes a block in place: `channels` points to one array of `frames` floats a channel.
    /// Throws ModuleError.
    void Process(float** channels, uint32_t frames);

    /// Appends the repairs made since the last call to `detections`, oldest first. Throws
    /// ModuleError.
    void ReadDetections(std::vector<DetectionRecord>& detections);

    /// Repairs that were overwritten before they could be read.
    uint64_t GetLostDetections() const { return lostDetections; }

    /// Sums over what has been analysed so far. Throws ModuleError.
    DetectionTotalsRecord ReadTotals() const;

private:
    void Create(int sampleRate, int channels);
    void SetControls(const ChosenControls& chosen);
    double SetControl(std::string_view identifier, std::optional<double> value);
    const ElementParamInfoRecord& FindParam(std::string_view identifier, uint32_t& index) const;
    void ReadParamList();
    void Call(uint32_t selector, uint32_t context, void* data, const char* purpose) const;
    bool ReadTransform(TransformReadRecord& record) const;

    const Module& module;
    PluginCore* core = nullptr;
    std::vector<ElementParamInfoRecord> params;
    Controls controls;
    uint32_t latency = 0;
    uint32_t nextDetection = 0;
    uint64_t lostDetections = 0;
    std::array<DetectionRecord, 64> detectionBuffer = {};
};

/// The number by which the entry knows a plain layout of `channels`, 1 to 24.
uint32_t ChannelConfigOf(int channels);

} // namespace Cli
