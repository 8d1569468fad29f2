// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/RepairSizes.h"

#include <algorithm>

namespace DSP {

namespace {

constexpr float PeakSeconds = 0.07F;
constexpr float EdgeSeconds = 0.05F;
constexpr uint32_t LeastPeakRadius = 2;
constexpr uint32_t LeastEdgeFrames = 3;

} // namespace

RepairSizes RepairSizes::WithHistory(float scaling) const noexcept UTIL_NONBLOCKING
{
    const auto framesIn = [&](float seconds) {
        const float frames = sampleRate * scaling * seconds / static_cast<float>(hopSize) + 0.5F;
        return static_cast<uint32_t>(frames);
    };
    RepairSizes sizes = *this;
    sizes.peakRadius = std::max(framesIn(PeakSeconds), LeastPeakRadius);
    sizes.edgeFrames = std::max(framesIn(EdgeSeconds), LeastEdgeFrames);
    return sizes;
}

} // namespace DSP
