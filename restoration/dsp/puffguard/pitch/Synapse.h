// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
#include "restoration/dsp/puffguard/pitch/PitchEngine.h"

#include <cstdint>
#include <vector>

/// Pitch tracking.
namespace DSP::Synapse {

/// How two channels become the one that the pitch is read from.
enum class StereoInputMode : uint32_t { LeftOnly = 0, RightOnly = 1, SumToMono = 2 };

/// Labels of the enumerations that Synapse shares with the element around it.
std::vector<String> GetVocalRangeLabels();
std::vector<String> GetResamplingQualityLabels();

/// Element that follows the pitch of its input. The block passes unchanged.
class Synapse final : public ElementDispatcher {
public:
    /// Ids of the parameters. Those of correction and resynthesis steer nothing here; they keep
    /// their places so that the others keep theirs.
    enum Param : uint32_t {
        FormantScaling = 0,
        Bypass = 1,
        Analyze = 2,
        LowLatency = 3,
        VocalRangeParam = 4,
        FormantPreservation = 5,
        ResamplingQuality = 6,
        DetectGranulePeaks = 7,
        StereoInput = 8,
        NoteSensitivity = 9,
        LowpassFrequency = 10,
        HighpassFrequency = 11,
        AveragingTime = 12,
        ClippingThreshold = 13,
        DisableDynamicProgramming = 14,
        DynamicProgrammingPatches = 15
    };

    /// `newDelayFrames` in runs of the tracker: how far it looks ahead. [setup]
    Synapse(const Setup& setup, int newDelayFrames);

    /// Pitch in Hz at the latest sample, 0 when unvoiced; it belongs to the sample GetLatency()
    /// earlier. 0 unless "Analyze" is on. [process]
    float GetPitch() noexcept UTIL_NONBLOCKING;

    /// As those of PitchEngine. [process]
    void EndBlock() noexcept UTIL_NONBLOCKING { engine.EndBlock(); }
    void Advance(int parts) noexcept UTIL_NONBLOCKING { engine.Advance(parts); }
    float GetBlockPitch() noexcept UTIL_NONBLOCKING;

protected:
    uint32_t GetLatencySamples(Context context) const override;
    uint32_t GetMaxLatencySamples() const override;
    void OnReset() override;
    void ProcessAudio(uint32_t frames, float* const* channels) override;

private:
    /// Where the registered values live.
    struct Values {
        float formantScaling = 0;
        bool bypass = false;
        bool analyze = false;
        bool lowLatency = false;
        uint32_t vocalRange = 0;
        bool formantPreservation = false;
        uint32_t resamplingQuality = 0;
        bool detectGranulePeaks = false;
        uint32_t stereoInput = 0;
        float noteSensitivity = 0;
        float lowpassHz = 0;
        float highpassHz = 0;
        float averagingTimeMs = 0;
        float clippingThreshold = 0;
        bool disableDynamicProgramming = false;
        uint32_t dynamicProgrammingPatches = 0;
    };

    void RegisterModes();
    void RegisterLatencyParams();
    void RegisterPrefilters();
    void RegisterResynthesis();
    void UpdateLatency();
    void MixToMono(uint32_t offset, uint32_t frames, float* const* channels) noexcept
        UTIL_NONBLOCKING;

    Values values;
    PitchEngine engine;
    std::vector<float> mono; // scratch of one block
};

} // namespace DSP::Synapse
