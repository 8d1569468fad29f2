// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Contract {

/// The effect as one way into it offers it: the module's entry or a plug-in format, each behind a
/// small host of ours. The same checks run through all of them.
///
/// Parameters are counted as in the module's automatable list and normalised; a bypass is 1 while
/// the repair is out of the signal, whatever sign the format gives it. Process() and Reset() are
/// calls of the audio thread, the rest belongs to the UI thread. SetParameter(), GetParameter(),
/// GetLatency(), Save(), Load() and Idle() may come while the other thread is in Process(): what
/// goes from one side to the other passes the host itself in safety.
class FormatHost {
public:
    FormatHost() = default;
    virtual ~FormatHost() = default;
    FormatHost(const FormatHost&) = delete;
    FormatHost& operator=(const FormatHost&) = delete;

    /// Before audio runs. `rate` in Hz may differ from that of the making; false when the format
    /// fixes it there, or refuses it, and then nothing has changed. A second call without a
    /// Deactivate() goes to the plug-in as it is.
    virtual bool Activate(double rate, uint32_t longestBlock) = 0;
    virtual void Deactivate() = 0;

    /// `frames` of each channel from `inputs` to `outputs`, which may share memory. A null channel
    /// is passed on where the format can say so. With 0 frames both may be null. Goes to the
    /// plug-in also when nothing has been activated. [process]
    virtual void Process(const float* const* inputs, float* const* outputs, uint32_t frames) = 0;
    /// Forgets the signal. [process]
    virtual void Reset() = 0;

    /// In samples, as the format reports it.
    virtual uint32_t GetLatency() = 0;
    /// How often the plug-in has told its host of another latency since the making; none where the
    /// host looks at it after each block.
    virtual std::optional<uint32_t> CountLatencyReports() = 0;
    /// Does what the plug-in has asked to be called for on the UI thread.
    virtual void Idle() {}

    virtual uint32_t CountParameters() = 0;
    /// Takes effect at the first frame of the next block. Any number goes to the plug-in, NaN too.
    virtual void SetParameter(uint32_t index, float normalised) = 0;
    /// What the plug-in has, not what the host remembers; none where the format can't ask it.
    /// Values that wait for a block don't count.
    virtual std::optional<float> GetParameter(uint32_t index) = 0;

    /// How many bytes a stream moves at most in one call from now on, where the format has streams.
    virtual void LimitStreams(uint32_t /*bytes*/) {}
    /// Everything that a session of the format keeps; empty when it can't be had.
    virtual std::vector<uint8_t> Save() = 0;
    /// False, and nothing changed, when the bytes are no state. What it brings counts like
    /// SetParameter().
    virtual bool Load(std::span<const uint8_t> bytes) = 0;
    /// A session of the format, for Load(), that holds this state of the module.
    virtual std::vector<uint8_t> MakeSession(std::span<const uint8_t> chunk) = 0;
};

/// A way into the effect. `make` gives null when there is no such instance; `channels` is 1, 2, 6
/// or 8. The binary is loaded by the first host of it, and unloaded with the last.
struct Format {
    const char* name;
    std::unique_ptr<FormatHost> (*make)(double rate, uint32_t channels);
    const char* binary;
};

std::unique_ptr<FormatHost> MakeEntryHost(double rate, uint32_t channels);
std::unique_ptr<FormatHost> MakeLv2Host(double rate, uint32_t channels);
std::unique_ptr<FormatHost> MakeClapHost(double rate, uint32_t channels);
std::unique_ptr<FormatHost> MakeVst3Host(double rate, uint32_t channels);

} // namespace Contract
