// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/LaneVector.h"
#include "restoration/dsp/autorepair/BinRange.h"
#include "restoration/dsp/autorepair/FrameLevels.h"

#include <cstddef>
#include <span>
#include <vector>

namespace AutoRepair {

/// Window of the low spectrum in seconds: long enough for the harmonics of a bass voice, 80 Hz and
/// more apart, to stand apart.
inline constexpr double LowSpectrumSeconds = 0.07;

/// Hz, up to which the low spectrum goes.
inline constexpr double HighestLowSpectrum = 500;

/// Tells a low voice's harmonics from a pop, which fills the gaps between them: valleys, the one
/// line that stands out, and periodicity.
///
/// The latter is 30 times the power spectrum's normalised autocorrelation of 40 to 500 Hz, at its
/// best lag of 4 to 17 ms (a voice of 60 to 250 Hz), with the window's own fall divided out; 1.2 is
/// the most that counts.
class LowSpectrum {
public:
    explicit LowSpectrum(const BinScale& scale);

    /// Bins of the power spectrum that Measure() reads.
    int GetBinCount() const { return binCount; }

    /// Fills in what `levels` has of the low spectrum, `power` being by bin.
    void Measure(std::span<const float> power, FrameLevels& levels);

private:
    RankedPair MeasureValley(std::span<const float> power,
                             const BinRange& range,
                             const PercentilePlace& place);
    float MeasurePeriodicity(std::span<const float> power);

    BinRange lowValley;
    BinRange upperValley;
    BinRange line;
    BinRange voiced;
    PercentilePlace lowPlace;
    PercentilePlace upperPlace;
    int binCount;
    DSP::Kernels::LaneVector
        cosines; // by bin of `voiced`, then by lag, the window's fall divided out
    DSP::Kernels::LaneVector correlation; // scratch, by lag
    std::vector<float> valley;            // scratch
};

} // namespace AutoRepair
