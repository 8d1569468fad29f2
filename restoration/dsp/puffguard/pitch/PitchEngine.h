// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"
#include "restoration/dsp/puffguard/pitch/Autocorr.h"
#include "restoration/dsp/puffguard/pitch/FrameHistory.h"
#include "restoration/dsp/puffguard/pitch/LagTracker.h"
#include "restoration/dsp/puffguard/pitch/Prefilter.h"

#include <span>

namespace DSP::Synapse {

/// From a stream of mono samples to its pitch track: prefilter and lag tracker. Runs of the
/// tracker wait for each other, so that their frames can be correlated side by side.
///
/// Threads: the constructor is [setup], the rest [process], from one thread at a time.
class PitchEngine {
public:
    /// `sampleRate` in Hz; `newDelayFrames` in tracker runs, at least 1.
    PitchEngine(double sampleRate, int newDelayFrames);

    /// Forgets the signal; settings stay.
    void Reset() noexcept UTIL_NONBLOCKING;

    /// The tracker's input filters; for their settings.
    Prefilter& GetPrefilter() noexcept UTIL_NONBLOCKING { return prefilter; }
    /// Off: less latency, a rougher track.
    void SetDynamicProgramming(bool enabled) noexcept UTIL_NONBLOCKING;
    /// On: the pitch waits until it is known whether the signal is voiced.
    void SetAnalysing(bool enabled) noexcept UTIL_NONBLOCKING { tracker.SetAnalysing(enabled); }
    /// Lowest voice, which the latency allows for.
    void SetVocalRange(VocalRange range) noexcept UTIL_NONBLOCKING { vocalRange = range; }

    /// Delay of the pitch against the input, in samples.
    int GetLatency() const noexcept UTIL_NONBLOCKING
    {
        return sizes.GetLatency(vocalRange, dynamicProgramming, delayFrames);
    }

    /// The longest delay that any setting gives.
    int GetMaxLatency() const noexcept UTIL_NONBLOCKING
    {
        return sizes.GetLatency(VocalRange::Bass, true, delayFrames);
    }

    /// Takes the next samples, full scale 1.0.
    void Process(std::span<const float> mono) noexcept UTIL_NONBLOCKING;

    /// Pitch in Hz at the latest sample, 0 when unvoiced; it belongs to the sample GetLatency()
    /// earlier.
    float GetPitch() noexcept UTIL_NONBLOCKING;

    /// Parts that the tracker's work up to the end of a block comes in: those of the correlations,
    /// then one for each run at most.
    static constexpr int CorrelationParts = Autocorr::Parts;
    static constexpr int RunParts = Autocorr::MaxFrames;
    static constexpr int BlockParts = CorrelationParts + RunParts;

    /// For one who wants the pitch at this sample, but later: the tracker's runs up to here can
    /// then be made part by part, while samples of the next block come in.
    void EndBlock() noexcept UTIL_NONBLOCKING { TakeRuns(); }
    /// Does the next `parts`, if so many are left, of the block ended last.
    void Advance(int parts) noexcept UTIL_NONBLOCKING;
    /// As GetPitch(), at the end of the block ended last; until Autocorr::MaxFrames runs are due
    /// in the next one.
    float GetBlockPitch() noexcept UTIL_NONBLOCKING;

private:
    void Append(std::span<const float> decimated) noexcept UTIL_NONBLOCKING;
    void TakeRuns() noexcept UTIL_NONBLOCKING;
    void MakeRuns(int end) noexcept UTIL_NONBLOCKING;

    const AnalysisSizes sizes;
    int delayFrames;
    VocalRange vocalRange = VocalRange::TenorAlto;
    bool dynamicProgramming = true;
    Prefilter prefilter;
    Autocorr autocorr;
    FrameHistory history; // decimated; a frame due is a run of the tracker
    LagTracker tracker;
    int runs = 0;      // that are worked on, the oldest in `history`
    int partsDone = 0; // of that work
    int made = 0;      // of the runs
    float pitchHz = 0; // of the latest run
};

} // namespace DSP::Synapse
