// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/puffguard/pitch/AnalysisDelegate.h"

#include <cstddef>
#include <vector>

namespace DSP::PitchDetect {

/// Keeps the analysis of the latest block: one pitch and confidence a sample, beside the samples
/// delayed so that they belong to these pitches.
class PitchStorageDelegate final : public Synapse::AnalysisDelegate {
public:
    /// Room for blocks of `maxBlockFrames` samples; what a longer block has more is left out.
    /// [setup]
    explicit PitchStorageDelegate(std::size_t maxBlockFrames);

    void BeginBlock(uint32_t newDelay, uint32_t newPhase) noexcept UTIL_NONBLOCKING override;
    void AddSample(std::span<const float> ring, uint32_t position) noexcept
        UTIL_NONBLOCKING override;
    void AddPitch(std::optional<float> pitchHz, float confidence) noexcept
        UTIL_NONBLOCKING override;
    void Clear() noexcept UTIL_NONBLOCKING override;

    /// Hz, 0 when unvoiced. [process]
    std::span<const float> GetPitches() const noexcept { return pitches; }

private:
    static void Append(std::vector<float>& values, float value) noexcept UTIL_NONBLOCKING;

    std::vector<float> samples;
    std::vector<float> pitches;
    std::vector<float> confidences;
    uint32_t delay = 0;
    uint32_t phase = 0;
};

} // namespace DSP::PitchDetect
