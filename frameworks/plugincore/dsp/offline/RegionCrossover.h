// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/offline/RegionFade.h"
#include "frameworks/plugincore/dsp/signal/MultichannelBuffer.h"

#include <cstdint>
#include <span>
#include <vector>

namespace DSP {

/// The way of a region's blocks into the element, and of what comes out into the recording: a
/// crossfade between processed and unprocessed audio at the edges. Elements whose regions have
/// bounds in frequency derive from it.
///
/// Threads: [setup] but for Begin() and the three calls of each block, which come in turn on one
/// thread.
class RegionCrossover {
public:
    /// `newRegion` outlives this.
    explicit RegionCrossover(const Region& newRegion)
        : region(newRegion)
        , fade(newRegion)
    {
    }
    RegionCrossover(const RegionCrossover&) = delete;
    RegionCrossover& operator=(const RegionCrossover&) = delete;
    virtual ~RegionCrossover() = default;

    /// Frames by which the region's blocks come later than the element makes them.
    virtual uint32_t GetLatency() const { return 0; }
    /// Those of them by which they come later to the element.
    virtual uint32_t GetLatencyBefore() const { return 0; }
    /// Blocks have whole multiples of so many frames.
    virtual uint32_t GetBlockUnit() const { return 1; }

    /// Blocks come from frame `position` of the recording on.
    virtual void Begin(int64_t /*position*/) {}
    /// Leaves of a block what the element is to get.
    virtual void Split(uint32_t /*frames*/, float* const* /*channels*/) {}
    /// Takes what the element has made of it; the block is late by both latencies. `position` is
    /// that of its first frame in the recording.
    virtual void Take(int64_t /*position*/, uint32_t /*frames*/, float* const* /*channels*/) {}
    /// Puts a block's frames, from number `offset` of it on, into the recording's.
    virtual void Join(int64_t position,
                      const MultichannelBufferView<float>& processed,
                      const MultichannelBufferView<float>& recording);

protected:
    const Region& GetRegion() const { return region; }
    /// Valid until the next call.
    std::span<const float> GetGains(int64_t position, uint32_t frames);

private:
    const Region& region;
    RegionFade fade;
    std::vector<float> gains;
};

} // namespace DSP
