// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/Module.h"
#include "wrappers/cli/OutputFile.h"
#include "wrappers/cli/Parameters.h"
#include "wrappers/cli/Presets.h"

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

/// Controls that the user chose; the others stay as they are.
struct ChosenControls {
    std::optional<double> sensitivity;
    std::optional<double> strength;
    std::optional<double> upperFrequency;
    std::optional<double> latencyScaling;
    bool bypass = false;
};

/// What an instance is set to, one upon the other.
struct Settings {
    std::string state; ///< a saved session; empty: the module's defaults
    ChosenControls chosen;
};

/// One instance of the module, driven through the entry as a host drives it. All calls of one
/// object come from one thread; objects of different threads don't meet.
class Instance {
public:
    /// Makes and initialises an instance and sets its controls, before any audio runs. All controls
    /// are set, chosen or not, so that nothing kept from another session shows in the result.
    /// Throws ModuleError.
    Instance(const Module& module, int sampleRate, int channels, const Settings& settings);
    ~Instance();
    Instance(const Instance&) = delete;
    Instance& operator=(const Instance&) = delete;
    Instance(Instance&&) = delete;
    Instance& operator=(Instance&&) = delete;

    /// Sets what the user chose on top of what is set. Throws ModuleError.
    void Choose(const ChosenControls& chosen);

    /// Takes a saved session; false when it is none, and then nothing has changed. Throws
    /// ModuleError.
    bool LoadState(std::string_view state);

    /// Sets every parameter to one end of its range: `normalised` is 0 or 1. Throws ModuleError.
    void SetAll(float normalised);

    /// The session as it stands. Throws ModuleError.
    std::string SaveState() const;

    /// Sets the instance by a preset's name or file. Throws FileError when it can't be, and then
    /// nothing has changed; its text names the preset. Throws ModuleError.
    Preset ApplyPreset(const std::string& name);

    /// Writes the settings as a preset, under a name or into a file, and returns the file. One that
    /// is there already stays unless `overwrite` allows it. Throws FileError, whose text names it,
    /// and ModuleError.
    std::string
    SavePreset(const std::string& name, const std::string& comment, Overwrite overwrite);

    /// Throws ModuleError.
    std::vector<Preset> ListPresets();

    /// All parameters with their values. Throws ModuleError.
    std::vector<Parameter> ReadParameters() const;

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
    void SetUp(const Settings& settings);
    void ReadParamList();
    uint32_t FindParam(std::string_view identifier) const;
    void SetParam(std::string_view identifier, std::optional<double> value);
    double ReadParam(uint32_t index) const;
    bool CallState(StateRecord& record) const;
    void CallPreset(PresetRecord& record, const char* purpose) const;
    void Call(uint32_t selector, uint32_t context, void* data, const char* purpose) const;
    bool ReadTransform(TransformReadRecord& record) const;

    const Module& module;
    PluginCore* core = nullptr;
    std::vector<Parameter> params;
    Controls controls;
    uint32_t latency = 0;
    uint32_t nextDetection = 0;
    uint64_t lostDetections = 0;
    std::array<DetectionRecord, 64> detectionBuffer = {};
};

/// The number by which the entry knows a plain layout of `channels`, 1 to 24.
uint32_t ChannelConfigOf(int channels);

} // namespace Cli
