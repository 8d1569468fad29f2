// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/puffguard/OversampledFilterbank.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace DSP {

/// How much of each bin of a bank lies between two frequencies, in Hz: 0 to 1. Bands that border on
/// each other share the bin between them, so that their weights add up to 1.
std::vector<float> MakeBandWeights(const OversampledFilterbank& bank, double lowHz, double highHz);

/// Multiplies the first bins of a spectrum by their weights. [process]
inline void WeighBins(std::span<const float> weights, float* spectrum) noexcept
{
    for (std::size_t bin = 0; bin < weights.size(); ++bin) {
        spectrum[2 * bin] *= weights[bin];
        spectrum[2 * bin + 1] *= weights[bin];
    }
}

/// Sets up a bank that tells bands apart by `selectivity`, in s: 8 frames to the Blackman window,
/// as long as there are transforms. [setup]
void ConfigureBandBank(OversampledFilterbank& bank,
                       int32_t channels,
                       int32_t sampleRate,
                       double selectivity);

} // namespace DSP
