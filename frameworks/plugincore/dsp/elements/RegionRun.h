// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/Element.h"
#include "frameworks/plugincore/dsp/offline/OfflineJob.h"
#include "frameworks/plugincore/dsp/offline/ReadaheadCache.h"
#include "frameworks/plugincore/dsp/offline/RegionCrossover.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace DSP {

/// The blocks of an offline job on their way from its source through an element to its sink.
///
/// Threads: all calls on the thread of the job, under the process lock.
class RegionRun {
public:
    /// Both outlive the run.
    RegionRun(OfflineJob& newJob, Element& newElement);

    OfflineJob& GetJob() const { return job; }

    /// How far a region is, 0 to 1; false cancels.
    using Progress = std::function<bool(double)>;

    /// Leads the element up to a region from `lead` frames before it on, and through it.
    OfflineResult
    Run(const Region& region, uint32_t lead, RegionCrossover& crossover, const Progress& progress);

private:
    struct Buffers {
        Buffers(uint32_t channelCount, uint32_t frames)
            : block(channelCount, frames)
            , recording(channelCount, frames)
        {
        }
        MultichannelBuffer block;     // what the element works on
        MultichannelBuffer recording; // as it is, where the block belongs
    };

    /// What of a block that comes out belongs to the region.
    struct Piece {
        int64_t first = 0;   // frame of the recording
        uint32_t offset = 0; // of it in the block
        uint32_t count = 0;
    };

    void PrepareBuffers(const RegionCrossover& crossover);
    Piece Cut(const Region& region, int64_t position) const;
    bool ReadBlock(int64_t position);
    bool GiveOut(const Piece& piece, RegionCrossover& crossover);

    OfflineJob& job;
    Element& element;
    std::unique_ptr<ReadaheadCache> cache;
    std::unique_ptr<Buffers> buffers;
};

} // namespace DSP
