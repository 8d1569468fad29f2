// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"
#include "restoration/dsp/puffguard/pitch/Autocorr.h"
#include "restoration/dsp/puffguard/pitch/Biquad.h"
#include "restoration/dsp/puffguard/pitch/DcFilter.h"
#include "restoration/dsp/puffguard/pitch/FrameHistory.h"
#include "restoration/dsp/puffguard/pitch/LagTracker.h"

#include <cstdint>
#include <span>

namespace DSP::Synapse {

/// From a stream of mono samples to its pitch track: prefilters, decimation, centre clipping and
/// the lag tracker. Runs of the tracker wait for each other, so that their frames can be correlated
/// side by side.
///
/// Threads: the constructor is [setup], the rest [process], from one thread at a time.
class PitchEngine {
public:
    /// `sampleRate` in Hz; `newDelayFrames` in tracker runs, at least 1.
    PitchEngine(double sampleRate, int newDelayFrames);

    /// Forgets the signal; settings stay.
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Corners of the prefilters, in Hz: the low-pass before decimation, the high-pass after it.
    void SetLowpass(float cornerHz) noexcept UTIL_NONBLOCKING;
    void SetHighpass(float cornerHz) noexcept UTIL_NONBLOCKING;
    /// Time of the level that centre clipping goes by, in ms; 0 follows each sample.
    void SetAveragingTime(float milliseconds) noexcept UTIL_NONBLOCKING;
    /// How much of the level is clipped away around 0, 0 to 1.
    void SetClippingThreshold(float fraction) noexcept UTIL_NONBLOCKING;
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

    /// Takes the next samples, full scale 1.0, and uses their memory as scratch.
    void Process(std::span<float> mono) noexcept UTIL_NONBLOCKING;

    /// Pitch in Hz at the latest sample, 0 when unvoiced; it belongs to the sample GetLatency()
    /// earlier.
    float GetPitch() noexcept UTIL_NONBLOCKING;

private:
    void Advance(float x) noexcept UTIL_NONBLOCKING;
    void Decimate() noexcept UTIL_NONBLOCKING;
    void RunTracker() noexcept UTIL_NONBLOCKING;

    const AnalysisSizes sizes;
    int delayFrames;
    VocalRange vocalRange = VocalRange::TenorAlto;
    bool dynamicProgramming = true;
    uint32_t phase = 0; // of the next sample within a decimated one
    DcFilter dcFilter;
    Biquad<float> lowpass;  // at the full rate
    Biquad<float> highpass; // at the decimated rate
    float lowpassSum = 0;   // outputs since the last decimated sample
    float level = 0;
    float levelCoefficient = 1;
    float clippingThreshold = 0;
    Autocorr autocorr;
    FrameHistory history; // decimated; a frame due is a run of the tracker
    LagTracker tracker;
    float pitchHz = 0; // of the latest run
};

} // namespace DSP::Synapse
