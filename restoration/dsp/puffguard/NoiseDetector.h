// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/RunningExp.h"
#include "restoration/dsp/puffguard/RunningHann.h"
#include "restoration/dsp/puffguard/RunningMax.h"

#include <cstdint>

namespace DSP {

/// Noise floor of each bin of a running power spectrum: the minimum over two seconds of a short
/// average, smoothed so that it falls within 0.1 s and rises within 10 s.
///
/// Nothing is learnt before signal has come in for the first time, and a bin at or below the given
/// level holds its average: digital silence doesn't drag the floor down.
///
/// Method: minimum statistics after R. Martin, "Noise power spectral density estimation based on
/// optimal smoothing and minimum statistics", IEEE Trans. Speech and Audio Processing 9(5), 2001,
/// with a fixed smoothing in place of the optimal one.
///
/// Threads: configure() is [setup] and allocates nothing where no size grows; the others are
/// [process].
class NoiseDetector {
public:
    /// The bins that are worked on, `last` excluded.
    struct BinRange {
        uint32_t first = 0;
        uint32_t last = 0;
    };

    /// `newBinCount` bins a spectrum, `rate` in Hz, `hop` in samples between spectra, `newFloor`
    /// the power up to which a bin counts as silent. Only the bins of `newRange` get a floor;
    /// whether there is signal is judged by the whole spectrum.
    void
    configure(uint32_t newBinCount, float rate, uint32_t hop, float newFloor, BinRange newRange);

    /// The same for all bins.
    void configure(uint32_t newBinCount, float rate, uint32_t hop, float newFloor)
    {
        configure(newBinCount, rate, hop, newFloor, {0, newBinCount});
    }

    /// Forgets all input.
    void reset() noexcept UTIL_NONBLOCKING;

    /// Takes the next spectrum of `power` and writes the floor; both have all bins, and bins
    /// outside the range are left alone in `out`. Until signal has come in, `out` is `power`
    /// itself, and half of it while the average fills.
    void process(const float* power, float* out) noexcept UTIL_NONBLOCKING;

private:
    bool IsSilent(const float* power) const noexcept UTIL_NONBLOCKING;

    uint32_t binCount = 0;
    float floor = 0;
    RunningHanns<float> smoother;
    RunningMaxs<float> minimum; // of the negated average
    RunningExps2<float> tracker;
    uint64_t frameCount = 0; // spectra since the first signal
    BinRange range;
    uint64_t startUpFrames = 0;
};

} // namespace DSP
