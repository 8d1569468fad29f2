// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace Contract {

/// The effect as one way into it offers it: the module's entry or a plug-in format, each behind a
/// small host of ours. The same checks run through all of them.
///
/// Parameters are counted as in the module's automatable list and normalised; a bypass is 1 while
/// the repair is out of the signal, whatever sign the format gives it. Process() and Reset() are
/// calls of the audio thread, the rest belongs to the UI thread.
class FormatHost {
public:
    FormatHost() = default;
    virtual ~FormatHost() = default;
    FormatHost(const FormatHost&) = delete;
    FormatHost& operator=(const FormatHost&) = delete;

    /// Before audio runs. `rate` in Hz may differ from that of the making; false when the format
    /// fixes it there, or refuses it, and then nothing has changed.
    virtual bool Activate(double rate, uint32_t longestBlock) = 0;
    virtual void Deactivate() = 0;

    /// `frames` of each channel from `inputs` to `outputs`, which may share memory. A null channel
    /// is passed on where the format can say so. With 0 frames both may be null. [process]
    virtual void Process(const float* const* inputs, float* const* outputs, uint32_t frames) = 0;
    /// Forgets the signal. [process]
    virtual void Reset() = 0;

    /// In samples, as the format reports it.
    virtual uint32_t GetLatency() = 0;

    virtual uint32_t CountParameters() = 0;
    /// Takes effect with the next block at the latest.
    virtual void SetParameter(uint32_t index, float normalised) = 0;
    virtual float GetParameter(uint32_t index) = 0;

    /// Empty when it can't be had.
    virtual std::vector<uint8_t> Save() = 0;
    /// False, and nothing changed, when the bytes are no state.
    virtual bool Load(std::span<const uint8_t> bytes) = 0;
};

/// A way into the effect. Null when it makes no such instance. `channels` is 1, 2, 6 or 8.
struct Format {
    const char* name;
    std::unique_ptr<FormatHost> (*make)(double rate, uint32_t channels);
};

std::unique_ptr<FormatHost> MakeEntryHost(double rate, uint32_t channels);
std::unique_ptr<FormatHost> MakeLv2Host(double rate, uint32_t channels);
std::unique_ptr<FormatHost> MakeClapHost(double rate, uint32_t channels);
std::unique_ptr<FormatHost> MakeVst3Host(double rate, uint32_t channels);

} // namespace Contract
