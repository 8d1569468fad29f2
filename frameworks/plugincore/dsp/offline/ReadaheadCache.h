// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/offline/OfflineSource.h"

#include <cstdint>

namespace DSP {

/// Reads a source a whole window at a time, so that what reads small blocks one after the other,
/// even at two places, asks it seldom.
///
/// Threads: one at a time.
class ReadaheadCache {
public:
    /// `newSource` outlives the cache.
    ReadaheadCache(OfflineSource& newSource, uint32_t channelCount, uint32_t windowFrames)
        : source(newSource)
        , totalFrames(newSource.GetFrames())
        , window(channelCount, windowFrames)
    {
    }

    /// Copies the frames from `position` on into the channels. False when the source fails, or when
    /// they aren't all in it, or are more than the window.
    bool Read(int64_t position, uint32_t count, float* const* destinations);

    uint64_t GetHits() const noexcept { return hits; }
    uint64_t GetMisses() const noexcept { return misses; }

private:
    bool Holds(int64_t position, uint32_t count) const noexcept
    {
        return position >= first && position + count - 1 <= last;
    }
    bool Fetch(int64_t position);

    OfflineSource& source;
    const int64_t totalFrames;
    MultichannelBuffer window;
    int64_t first = 0; // frames that the window holds; none while first > last
    int64_t last = -1;
    uint64_t hits = 0;
    uint64_t misses = 0;
};

} // namespace DSP
