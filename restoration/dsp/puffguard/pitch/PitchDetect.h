// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/ElementDispatcher.h"
#include "restoration/dsp/puffguard/pitch/Synapse.h"

#include <cstdint>

/// Pitch of a signal, for elements that need to know it.
namespace DSP::PitchDetect {

/// Element that follows the pitch of its input. The block passes unchanged.
/// Its parameters hand on to those of the same name on the Synapse inside.
class PitchDetect final : public ElementDispatcher {
public:
    enum Param : uint32_t {
        Analyze = 0,
        Bypass = 1,
        DisableDynamicProgramming = 2,
        ResamplingQuality = 3,
        VocalRange = 4,
        LowpassFrequency = 5,
        HighpassFrequency = 6,
        DynamicProgrammingPatches = 7
    };

    /// Runs of the tracker that its dynamic programming looks ahead.
    static constexpr int DelayFrames = 64;
    /// Runs of the tracker that may wait.
    static constexpr int MaxRuns = Autocorr::MaxFrames;

    /// Where the element works: that of the element around it.
    struct Format {
        ElementHost& host;
        float sampleRate = 0;       ///< Hz
        uint32_t channelConfig = 0; ///< layout code
    };

    /// [setup]
    explicit PitchDetect(const Format& format);

    /// Pitch in Hz at the latest sample, 0 when unvoiced; it belongs to the sample GetLatency()
    /// earlier. 0 unless "Analyze" is on. [process]
    float GetPitch() noexcept UTIL_NONBLOCKING { return synapse.GetPitch(); }

    /// The pitch at this sample is wanted, but later: the work for it is done by Advance().
    /// [process]
    void EndBlock() noexcept UTIL_NONBLOCKING { synapse.EndBlock(); }
    /// Does up to `runs` of the at most MaxRuns parts of that work. [process]
    void Advance(int runs) noexcept UTIL_NONBLOCKING { synapse.Advance(runs); }
    /// As GetPitch(), at the latest EndBlock(); before another block of as many samples, at most
    /// MaxRuns runs of the tracker, has come in. [process]
    float GetBlockPitch() noexcept UTIL_NONBLOCKING { return synapse.GetBlockPitch(); }

protected:
    uint32_t GetLatencySamples(Context context) const override;
    uint32_t GetMaxLatencySamples() const override;
    void OnReset() override;
    void ProcessAudio(uint32_t frames, float* const* channels) override;

private:
    struct Values {
        bool analyze = false;
        bool bypass = false;
        bool disableDynamicProgramming = false;
        uint32_t resamplingQuality = 0;
        uint32_t vocalRange = 0;
        float lowpassHz = 0;
        float highpassHz = 0;
        uint32_t dynamicProgrammingPatches = 0;
    };

    void LinkBools();
    void LinkFloats();
    void LinkEnums();

    Values values;
    Synapse::Synapse synapse;
};

} // namespace DSP::PitchDetect
