// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/offline/Region.h"
#include "restoration/dsp/puffguard/DataTail.h"
#include "restoration/dsp/puffguard/OversampledFilterbank.h"
#include "restoration/dsp/puffguard/RunningHann.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace DSP {

/// Keeps of a signal, frame by frame, the frequencies that a region has there: those of the box
/// that holds the frame's centre, or of the nearest one, averaged over some frames where they
/// change. What is silent comes out as silence, to the bit.
///
/// Threads: the constructor is [setup]; Process() comes on one thread.
class BandMask {
public:
    struct Setup {
        ProcessingFFTPool& pool; ///< outlives the mask
        const Region& region;    ///< likewise
        uint32_t channels = 0;
        double sampleRate = 0; ///< Hz
        double fadeFrames = 0; ///< that a change of the band takes
    };
    explicit BandMask(const Setup& setup);

    uint32_t GetHop() const { return static_cast<uint32_t>(bank.GetHop()); }
    uint32_t GetLatency() const { return static_cast<uint32_t>(bank.GetLatency()); }

    /// In place, late by the latency. `position` is that of the block's first frame, as it comes
    /// in, in the recording; whole hops.
    void Process(int64_t position, uint32_t frames, float* const* channels);

private:
    void RunHop(int64_t centre);
    bool IsSilent() const;
    void MoveTo(int64_t centre);
    void WantParts();

    const Region& region;
    OversampledFilterbank bank;
    bool hasOneBand;
    std::vector<std::size_t> wantedParts; // whose bands come, `halfLength` frames ahead
    std::vector<std::size_t> partsAhead;  // scratch
    std::vector<float> wanted;            // weights that these have
    RunningHanns<float> smoothed;
    std::vector<float> weights; // of the frame
    uint32_t halfLength = 0;    // frames that `smoothed` looks ahead and back
    uint32_t steadyFrames = 0;  // since its last change
    uint32_t openHops = 0;      // that still hold something of what wasn't silent
    DataTail spectrum;
    std::vector<float> power;
    std::vector<float*> pointers;
};

} // namespace DSP
