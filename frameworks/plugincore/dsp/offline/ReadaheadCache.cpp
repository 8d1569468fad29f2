// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/offline/ReadaheadCache.h"

#include <algorithm>

namespace DSP {

bool ReadaheadCache::Read(int64_t position, uint32_t count, float* const* destinations)
{
    if (count == 0) {
        return true;
    }
    if (Holds(position, count)) {
        ++hits;
    } else {
        ++misses;
        if (!Fetch(position) || !Holds(position, count)) {
            return false;
        }
    }
    for (uint32_t channel = 0; channel < window.GetChannelCount(); ++channel) {
        std::copy_n(window.GetChannel(channel) + (position - first), count, destinations[channel]);
    }
    return true;
}

bool ReadaheadCache::Fetch(int64_t position)
{
    first = 0;
    last = -1;
    if (position >= totalFrames) {
        return false;
    }
    const auto count =
        static_cast<uint32_t>(std::min<int64_t>(window.GetFrames(), totalFrames - position));
    if (!source.Read(position, window.View(count))) {
        return false;
    }
    first = position;
    last = position + count - 1;
    return true;
}

} // namespace DSP
