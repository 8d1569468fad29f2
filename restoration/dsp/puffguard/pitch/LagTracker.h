// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/RunningExp.h"
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"
#include "restoration/dsp/puffguard/pitch/DynProgCached.h"
#include "restoration/dsp/puffguard/pitch/LagMap.h"
#include "restoration/dsp/puffguard/pitch/VoicingGate.h"

#include <span>

namespace DSP::Synapse {

/// Follows the pitch period of a decimated signal, one run per analysis hop.
///
/// Each run finds a few candidate lags in the frame's autocorrelation, weighted by what earlier
/// runs have found; dynamic programming picks the smoothest way through the candidates of the last
/// `delayFrames` + 1 runs, and the voicing gate separates voiced from unvoiced.
///
/// Threads: the constructor is [setup], the rest [process], from one thread at a time.
class LagTracker {
public:
    /// `newDelayFrames` in runs: how far dynamic programming looks ahead. The kernels are those
    /// that the processor runs best unless a test passes others.
    LagTracker(const AnalysisSizes& sizes,
               int newDelayFrames,
               const Kernels::LagSearchKernels& newKernels = Kernels::GetKernels().lagSearch);

    /// Forgets the signal.
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Off: each run's first candidate is taken as it is, at once.
    void SetDynamicProgramming(bool enabled) noexcept UTIL_NONBLOCKING;

    /// Off: the lag is answered as voiced at once, without the voicing gate and its delay.
    void SetAnalysing(bool enabled) noexcept UTIL_NONBLOCKING;

    /// One run on the autocorrelation of a frame by lag, a row as Autocorr gives it; lags from
    /// `firstLag` on are searched. The peaks found are erased from it.
    LagEstimate Run(std::span<float> correlation, int firstLag) noexcept UTIL_NONBLOCKING;

private:
    /// Where a candidate lies, and how periodic the frame is there.
    struct Peak {
        int found; ///< lag of the best score
        int top;   ///< lag of the correlation's own maximum
        float lag; ///< refined
        float clarity;
    };

    Peak FindPeak(std::span<const float> correlation) noexcept UTIL_NONBLOCKING;
    Peak FindCandidates(std::span<float> correlation) noexcept UTIL_NONBLOCKING;
    float Settle(float newLag, float newClarity) noexcept UTIL_NONBLOCKING;

    const Kernels::LagSearchKernels& kernels;
    int minLag;
    int maxLag;
    float decimatedRate;
    int delayFrames;
    bool dynamicProgramming = true;
    bool analysing = true;
    LagMap map;
    RunningExp<float> confidence;
    DP::DynProgCached path;
    VoicingGate gate;
    DP::DynProgCached::Candidates candidates;
    float lag = 0; // answer of the run before
};

} // namespace DSP::Synapse
