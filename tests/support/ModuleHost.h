// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

/// A host of the finished module that knows no more than the public header: tests act through it.
namespace TestHost {

constexpr uint32_t Process = 0; ///< context of the processing side
constexpr uint32_t UI = 1;      ///< context of the UI side

/// Rows of the automatable list, in its order.
enum Automatable : uint32_t { Sensitivity, Strength, UpperFrequency, GlobalBypass };
/// Places in the flat list of element parameters: seven of the global element stand first.
constexpr uint32_t ElementLatencyScaling = 10;

/// The layout code of a plain layout: 0 and 1 for mono and stereo, else the numbered ones.
constexpr uint32_t LayoutOf(uint32_t channels)
{
    return channels <= 2 ? channels - 1 : channels + 10;
}

/// Audio as [channel][frame].
using Audio = std::vector<std::vector<float>>;

/// The entry of the module, which is loaded at the first call and stays; null when it can't be.
PluginCoreEntryFunction Entry();

/// Calls the entry with the right magic number.
uint32_t Call(uint32_t selector, uint32_t context, PluginCore* instance, void* data);

/// What the host callback was called for.
struct HostCall {
    uint32_t opcode;
    uint32_t context;
    uint32_t word; ///< first word of the record, 0 without one
};

/// One instance from CreatePlugin to DestroyPlugin. Moving audio is for one thread at a time, the
/// rest for another. Create it where it stays: the module holds its address.
class Instance {
public:
    /// Creates and initializes. Get() is null when that fails. `options` as in PluginIdentity.
    Instance(float sampleRate, uint32_t channels, const char* options = "");
    Instance(const Instance&) = delete;
    Instance(Instance&&) = delete;
    Instance& operator=(const Instance&) = delete;
    Instance& operator=(Instance&&) = delete;
    /// Terminates and destroys.
    ~Instance();

    PluginCore* Get() const { return instance; }

    uint32_t SetFormat(float sampleRate, uint32_t layout);
    /// Reported latency in samples.
    uint32_t Latency(uint32_t context = UI);
    /// Normalised values.
    void Set(uint32_t index, float value, uint32_t context = UI);
    float Value(uint32_t index, uint32_t context = UI);
    void SetElement(uint32_t index, float value, uint32_t context = UI);
    /// Resets all processing, as a host does before it plays.
    void Settle();
    /// What a session keeps; empty when it can't be had.
    std::vector<uint8_t> SaveState();
    /// False when the bytes are no state.
    bool LoadState(std::vector<uint8_t> state);
    /// An operation on presets, as the record describes it; the answer says how it went.
    PresetRecord RunPreset(int32_t op,
                           const std::string& name = "",
                           uint32_t listIndex = 0,
                           const char* comment = "said",
                           int32_t mayReplace = 0);
    /// Number of repairs since the last restart that the module reports.
    uint32_t Detections();

    /// Runs `frames` frames in place from `begin` on; answers the entry's code.
    uint32_t RunBlock(Audio& audio, uint32_t begin, uint32_t frames);
    /// Runs everything in place, cut as `nextBlock` says (frames of the next block, at least 1).
    void Run(Audio& audio, const std::function<uint32_t()>& nextBlock);
    void Run(Audio& audio, uint32_t block);

    /// Called within the host callback, besides keeping the call. Set it while nothing runs.
    std::function<void(const HostCall&)> onHostCall;
    /// All calls so far, the first 1024 of them.
    std::vector<HostCall> Calls();

private:
    static uint32_t
    Callback(uint32_t magic, uint32_t opcode, uint32_t context, void* refcon, void* data);

    PluginCore* instance = nullptr;
    // Host calls come on the audio thread too, so keeping them takes neither the heap nor a lock.
    std::array<std::atomic<uint64_t>, 1024> calls{}; // opcode, context in a byte, word
    std::atomic<std::size_t> callCount = 0;
};

/// A quiet noise floor with bursts of air that the module repairs: [channels][frames], the same for
/// the same arguments.
Audio MakeSpeechLike(uint32_t channels, uint32_t frames, float sampleRate);

} // namespace TestHost
