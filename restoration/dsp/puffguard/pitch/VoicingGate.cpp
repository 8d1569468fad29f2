// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/VoicingGate.h"

#include <algorithm>

namespace DSP::Synapse {

namespace {

constexpr uint32_t CostCount = 33; // of which the lowest counts
constexpr float UnknownCost = 1e30F;
/// What the past before the first run counts as in the smoothed cost; the start-up hides it.
constexpr float PastCost = 1.0F;

} // namespace

VoicingGate::VoicingGate(int newDelayFrames)
    : delayFrames(newDelayFrames)
    , pending(static_cast<std::size_t>(newDelayFrames) + 1)
{
    smoothedCost.configure(static_cast<uint32_t>(delayFrames), PastCost);
    negatedCost.configure(CostCount, -UnknownCost);
    Reset();
}

void VoicingGate::Reset() noexcept UTIL_NONBLOCKING
{
    smoothedCost.reset();
    negatedCost.reset();
    std::fill(pending.begin(), pending.end(), Pending{0, 0});
    pendingPosition = 0;
    // The smoother's window, and then the path that looks back as far as dynamic programming does.
    startUpRuns = 2 * delayFrames + 1 + delayFrames;
}

LagEstimate VoicingGate::Push(float lag, float confidence, float meanCost) noexcept UTIL_NONBLOCKING
{
    pending[pendingPosition] = {lag, confidence};
    pendingPosition = pendingPosition + 1 == pending.size() ? 0 : pendingPosition + 1;
    const Pending oldest = pending[pendingPosition];

    const float cost = smoothedCost.process(meanCost) * smoothedCost.GetScale();
    const float lowestCost = -negatedCost.process(-cost);
    const bool startingUp = startUpRuns > 0;
    startUpRuns -= startingUp ? 1 : 0;
    if (startingUp || lowestCost >= UnvoicedCost || oldest.lag == 0) {
        return {};
    }
    return {oldest.lag, true, oldest.confidence};
}

} // namespace DSP::Synapse
