// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/offline/Region.h"
#include "frameworks/plugincore/dsp/signal/MultichannelBuffer.h"

#include <cstdint>
#include <vector>

namespace DSP {

/// A recording that offline work reads, and what of it is to be worked on.
class OfflineSource {
public:
    OfflineSource() = default;
    OfflineSource(const OfflineSource&) = delete;
    OfflineSource& operator=(const OfflineSource&) = delete;
    virtual ~OfflineSource() = default;

    virtual int64_t GetFrames() const = 0;
    /// Boxes without a fault, in any order; see FindFault().
    virtual const std::vector<RegionBox>& GetBoxes() const = 0;
    /// Fills all of `target` with the frames from `position` on, which lie in the recording. False
    /// when it can't. Positions run forward but for the way back before the next region.
    virtual bool Read(int64_t position, const MultichannelBufferView<float>& target) = 0;
};

} // namespace DSP
