// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/FFTImpl.h"
#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/pitch/CosineTransform.h"

#include <span>
#include <vector>

namespace DSP {

/// Autocorrelation of a windowed frame, derived from its magnitude spectrum.
///
/// Magnitudes instead of powers flatten the spectrum, so that a strong formant weighs less against
/// the harmonics that tell the pitch. Sizes: maxLag in samples; frame length n = 1.8 * maxLag,
/// truncated; FFT size F the smallest power of two, at least 8, not below n + maxLag.
class Autocorr {
public:
    /// Makes tables and buffers. `maxLag` from 1 to 20000. [setup]
    explicit Autocorr(int maxLag);

    /// Autocorrelation of the n samples of `older` followed by `newer` for lags 0..maxLag into
    /// `correlation`, which holds maxLag + 1 floats. [process]
    void Compute(std::span<const float> older,
                 std::span<const float> newer,
                 std::span<float> correlation) noexcept UTIL_NONBLOCKING;

    /// Makes up for the window's fall over long lags and sets negative values to 0, for the lags
    /// 0..maxLag of `correlation`. [process]
    void CompensateWindow(std::span<float> correlation) const noexcept UTIL_NONBLOCKING;

    int GetFrameLength() const noexcept { return frameLength; } ///< n, samples. [any]
    int GetFftSize() const noexcept { return fftSize; }         ///< F. [any]

private:
    static int OrderFor(int length);

    int frameLength;
    int fftOrder;
    int fftSize;
    FFTImpl<float> transform;
    CosineTransform cosineTransform;
    std::vector<float> window;       // n
    std::vector<float> compensation; // maxLag + 1
    std::vector<float> frame;        // F, zero from n on
    std::vector<float> spectrum;     // F + 2
    std::vector<float> magnitudes;   // F / 2 + 1
};

} // namespace DSP
