// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/region/BandWeights.h"

#include "frameworks/plugincore/dsp/signal/FFTImpl.h"

#include <algorithm>

namespace DSP {

namespace {

constexpr int32_t OverlapFactor = 8;
// The bank takes the next longer transform from 0.7 of the time on; a little less than the longest,
// so that rounding doesn't ask for one beyond it.
constexpr double LongestTransform = 0.999 * (1 << FFTImpl<float>::MaxOrder) / 0.7; // samples

} // namespace

std::vector<float> MakeBandWeights(const OversampledFilterbank& bank, double lowHz, double highHz)
{
    const std::vector<float>& lower = bank.GetLowerBandEdges();
    const std::vector<float>& upper = bank.GetUpperBandEdges();
    std::vector<float> weights(lower.size());
    for (std::size_t bin = 0; bin < weights.size(); ++bin) {
        const auto from = static_cast<double>(lower[bin]);
        const auto to = static_cast<double>(upper[bin]);
        const double inside = std::min(to, highHz) - std::max(from, lowHz);
        weights[bin] = static_cast<float>(std::clamp(inside / (to - from), 0.0, 1.0));
    }
    return weights;
}

void ConfigureBandBank(OversampledFilterbank& bank,
                       int32_t channels,
                       int32_t sampleRate,
                       double selectivity)
{
    const double longest = LongestTransform / static_cast<double>(sampleRate);
    bank.initialise(channels, sampleRate, 0);
    bank.configure(
        static_cast<float>(std::min(selectivity, longest)), OverlapFactor, WindowBlackman, -1);
}

} // namespace DSP
