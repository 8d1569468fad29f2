// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/pitch/AnalysisSizes.h"

#include <span>
#include <vector>

namespace DSP::Synapse {

/// A weight for each lag, near 1, that makes the tracker keep to the lags it has lately found and
/// away from their octaves. Weights go back to 1 within some 60 ms of the tracker's time.
class LagMap {
public:
    /// [setup]
    explicit LagMap(const AnalysisSizes& sizes);

    /// All weights 1. [process]
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Moves every weight toward 1, once a run. [process]
    void Relax() noexcept UTIL_NONBLOCKING;

    /// Raises the weights around the lag of a candidate found at index `found`, and lowers those
    /// around half and twice of it. `lag` in decimated samples, `clarity` 0 to 1. [process]
    void Mark(int found, float lag, float clarity) noexcept UTIL_NONBLOCKING;

    std::span<const float> GetWeights() const noexcept { return weights; } ///< by lag. [process]
    int GetMargin() const noexcept { return margin; } ///< b, lags that a mark reaches. [any]

private:
    struct Range {
        int first;
        int last;
    };
    Range ShapeBell(int index, float centre) noexcept UTIL_NONBLOCKING;
    void Penalise(int index, float centre, float depth) noexcept UTIL_NONBLOCKING;

    int margin; // b
    float relaxation;
    std::vector<float> weights; // maxLag + 1
    std::vector<float> cosines; // cos(pi j / b) for j = -b..b
    std::vector<float> sines;   // sin(pi j / b) for j = -b..b
    std::vector<float> bell;    // one value a lag, valid in the range shaped last
};

} // namespace DSP::Synapse
