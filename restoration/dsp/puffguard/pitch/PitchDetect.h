// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"
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
    /// Parts that the work on a block comes in: first those of the correlations, then the runs.
    static constexpr int CorrelationParts = Synapse::PitchEngine::CorrelationParts;
    static constexpr int BlockParts = Synapse::PitchEngine::BlockParts;

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
    /// Does up to `parts` of the BlockParts of that work. [process]
    void Advance(int parts) noexcept UTIL_NONBLOCKING { synapse.Advance(parts); }
    /// As GetPitch(), at the latest EndBlock(); before another block of as many samples, at most
    /// Autocorr::MaxFrames runs of the tracker, has come in. [process]
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
