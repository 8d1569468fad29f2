// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/offline/RegionCrossover.h"
#include "frameworks/plugincore/dsp/signal/DelayLine.h"
#include "restoration/dsp/puffguard/region/BandMask.h"
#include "restoration/dsp/puffguard/region/Crossover.h"

#include <cstdint>
#include <vector>

namespace DSP {

/// The way in and out of regions that are bounded in frequency. The element gets the band that
/// holds all boxes. What it changes there, which is what comes out less what went in, is kept to
/// the frequencies of each box and added to the recording.
///
/// That is what adding up the three bands below, inside and above would come to, but for their
/// rounding: so the recording stays as it is, to the bit, wherever the element changes nothing.
class BandCrossover final : public RegionCrossover {
public:
    struct Setup {
        ProcessingFFTPool& pool; ///< outlives this
        uint32_t channels = 0;
        double sampleRate = 0;       ///< Hz
        uint32_t elementLatency = 0; ///< samples
        double fadeMilliseconds = 0;
    };
    BandCrossover(const Region& newRegion, const Setup& setup);

    uint32_t GetLatency() const override { return split.GetLatency() + mask.GetLatency(); }
    uint32_t GetLatencyBefore() const override { return split.GetLatency(); }
    uint32_t GetBlockUnit() const override { return split.GetHop(); }
    void Begin(int64_t position) override;
    void Split(uint32_t frames, float* const* channels) override;
    void Take(int64_t position, uint32_t frames, float* const* channels) override;
    void Join(int64_t position,
              const MultichannelBufferView<float>& processed,
              const MultichannelBufferView<float>& recording) override;

private:
    void SilenceStart(uint32_t frames, float* const* channels);

    Crossover split;
    BandMask mask;
    std::vector<DelayLine> lines;              // the band, as late as the element is
    uint32_t silentFrames = 0;                 // that the band doesn't count as settled for yet
    std::vector<std::vector<float>> unchanged; // of the block, [channel][frame]
};

} // namespace DSP
