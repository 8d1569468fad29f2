// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "frameworks/plugincore/dsp/kernels/LaneVector.h"
#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"

#include <cstddef>
#include <span>
#include <vector>

namespace DSP::Synapse {

/// Scores of the lags: a correlation smoothed over the runs, by a weight for each lag, near 1, that
/// makes the tracker keep to the lags it has lately found and away from their octaves. Weights go
/// back to 1 within some 60 ms of the tracker's time.
class LagMap {
public:
    /// The kernels are those that the processor runs best unless a test passes others. [setup]
    explicit LagMap(const AnalysisSizes& sizes,
                    const Kernels::LagSearchKernels& newKernels = Kernels::GetKernels().lagSearch);

    /// All weights 1, and no input so far. [process]
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Takes the correlation of the next run by lag, none negative, a row of
    /// Kernels::GetCorrelationStride(); makes the scores of the lags from `firstLag` on. Then all
    /// weights move toward 1. [process]
    void Score(const float* correlation, int firstLag) noexcept UTIL_NONBLOCKING;

    /// Lag of the best score that is left, the shortest of equal ones. [process]
    int FindBest() noexcept UTIL_NONBLOCKING;

    /// Erases the peak of the scores around a lag. [process]
    void ErasePeak(int found) noexcept UTIL_NONBLOCKING;

    /// Raises the weights around the lag of a candidate found at index `found`, and lowers those
    /// around half and twice of it. `lag` in decimated samples, `clarity` 0 to 1. [process]
    void Mark(int found, float lag, float clarity) noexcept UTIL_NONBLOCKING;

    /// By lag. [process]
    std::span<const float> GetWeights() const noexcept;
    int GetMargin() const noexcept { return margin; } ///< b, lags that a mark reaches. [any]

private:
    Kernels::LagScores GetScores() noexcept UTIL_NONBLOCKING;
    Kernels::Bell MakeBell(int index, float centre) const noexcept UTIL_NONBLOCKING;

    const Kernels::LagSearchKernels& kernels;
    int maxLag;
    int margin;              // b
    float angleOfLag;        // pi / b
    std::ptrdiff_t lagCount; // scored, with some behind the last; a row has room
    Kernels::ScoreTimes times;
    std::ptrdiff_t lead;          // weights before lag 0, b of them or more
    Kernels::LaneVector weights;  // with room for a bell behind the last lag
    Kernels::LaneVector smoothed; // by lag
    Kernels::LaneVector scores;   // by lag
    Kernels::LaneVector maxima;   // of the scores
    int first = 0;                // shortest lag that is scored
    std::vector<float> cosines;   // cos(pi j / b) for j = -b..b
    std::vector<float> sines;     // sin(pi j / b) for j = -b..b
};

} // namespace DSP::Synapse
