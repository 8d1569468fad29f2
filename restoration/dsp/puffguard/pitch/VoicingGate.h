// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/RunningHann.h"
#include "restoration/dsp/puffguard/RunningMax.h"

#include <cstddef>
#include <vector>

namespace DSP::Synapse {

/// What the tracker answers for one run.
struct LagEstimate {
    float lag = 0; ///< decimated samples; meaningful while `voiced`
    bool voiced = false;
    float confidence = 0; ///< 0 to 1
};

/// Decides which stretches of the track are voiced: those whose smoothest path is cheap over a
/// window of 2 * delayFrames + 1 runs. The estimates wait for that window's middle.
class VoicingGate {
public:
    /// Cost per step from which on a stretch is unvoiced.
    static constexpr float UnvoicedCost = 0.9F;

    /// `newDelayFrames` in runs, at least 1. [setup]
    explicit VoicingGate(int newDelayFrames);

    /// Forgets all runs. Answers are unvoiced until windows and rings hold real values. [process]
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Takes one run and answers for the one `delayFrames` before it. `meanCost` is the path's cost
    /// per step. [process]
    LagEstimate Push(float lag, float confidence, float meanCost) noexcept UTIL_NONBLOCKING;

private:
    struct Pending {
        float lag;
        float confidence;
    };

    int delayFrames;
    RunningHann<float> smoothedCost;
    RunningMax<float> negatedCost; // of the latest smoothed costs, of which the lowest counts
    std::vector<Pending> pending;  // ring of delayFrames + 1
    std::size_t pendingPosition = 0;
    int startUpRuns = 0; // still to pass before anything can be voiced
};

} // namespace DSP::Synapse
