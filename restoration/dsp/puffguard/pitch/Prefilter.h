// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"
#include "restoration/dsp/puffguard/pitch/Biquad.h"
#include "restoration/dsp/puffguard/pitch/InputFilters.h"

#include <cstddef>
#include <span>

namespace DSP::Synapse {

/// The tracker's input: the signal without direct current, low-passed, decimated by adding
/// up, high-passed, and clipped around 0 by a fraction of its level.
///
/// Method: centre clipping after M. M. Sondhi, "New methods of pitch extraction", IEEE Trans. Audio
/// and Electroacoustics 16(2), 1968.
///
/// Threads: the constructor is [setup], the rest [process], from one thread at a time.
class Prefilter {
public:
    static constexpr std::size_t MostSamples = 256; ///< of one call of Process()

    explicit Prefilter(const AnalysisSizes& sizes);

    /// Forgets the signal; settings stay.
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Corners in Hz: the low-pass before decimation, the high-pass after it.
    void SetLowpass(float cornerHz) noexcept UTIL_NONBLOCKING;
    void SetHighpass(float cornerHz) noexcept UTIL_NONBLOCKING;
    /// Time of the level that centre clipping goes by, in ms; 0 follows each sample.
    void SetAveragingTime(float milliseconds) noexcept UTIL_NONBLOCKING;
    /// How much of the level is clipped away around 0, 0 to 1.
    void SetClippingThreshold(float fraction) noexcept UTIL_NONBLOCKING;

    /// Takes the next samples, at most MostSamples, full scale 1.0. The first one after a reset
    /// completes a decimated sample, and after it each `decimation`-th one; those are written to
    /// `target`, at most as many as `samples`. Answers how many.
    std::size_t Process(std::span<const float> samples, float* target) noexcept UTIL_NONBLOCKING;

private:
    /// What follows the filters at the full rate.
    struct Stages {
        float Decimate() noexcept UTIL_NONBLOCKING;

        Biquad<float> highpass; // at the decimated rate
        float sum = 0;          // of filtered samples since the last decimated one
        float level = 0;
        float levelCoefficient = 1;
        float clippingThreshold = 0;
        int samplesLeft = 1; // until a decimated one is complete
    };

    double decimatedRate; // Hz
    int decimation;
    InputFilters input;
    Stages stages;
};

} // namespace DSP::Synapse
