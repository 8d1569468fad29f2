// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/LagMap.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace DSP::Synapse {

namespace {

constexpr double RelaxSeconds = 0.06;
constexpr double MarginSeconds = 0.0001;
constexpr int LeastMargin = 8;
constexpr float PenaltyDepth = 0.9F;

} // namespace

LagMap::LagMap(const AnalysisSizes& sizes)
    : margin(std::max(
          LeastMargin,
          static_cast<int>(std::lround(static_cast<double>(sizes.decimatedRate) * MarginSeconds))))
    , relaxation(static_cast<float>(
          1.0 - std::exp(-1.0 / (static_cast<double>(sizes.trackerRate) * RelaxSeconds))))
    , weights(static_cast<std::size_t>(sizes.maxLag) + 1, 1.0F)
    , bell(weights.size())
{
    for (int j = -margin; j <= margin; ++j) {
        const double angle = std::numbers::pi * j / margin;
        cosines.push_back(static_cast<float>(std::cos(angle)));
        sines.push_back(static_cast<float>(std::sin(angle)));
    }
}

void LagMap::Reset() noexcept UTIL_NONBLOCKING
{
    std::fill(weights.begin(), weights.end(), 1.0F);
}

void LagMap::Relax() noexcept UTIL_NONBLOCKING
{
    for (float& weight : weights) {
        weight += (1.0F - weight) * relaxation;
    }
}

/// Fills `bell` with cos(pi (i - centre) / b) * 0.5 + 0.5 for the lags i within b of `index`. The
/// cosine of each lag comes from the table by turning it through what `centre` lies off `index`.
/// That differs from the cosine taken directly in the last bits only, by less than 1e-6, at a
/// fraction of the cost. It is good enough: weights lie between 0.1 and 2.5 and only rank lags
/// whose own values carry roundings as large.
LagMap::Range LagMap::ShapeBell(int index, float centre) noexcept UTIL_NONBLOCKING
{
    const Range range{std::max(index - margin, 0),
                      std::min(index + margin, static_cast<int>(weights.size()) - 1)};
    const float angle = (centre - static_cast<float>(index)) *
                        (std::numbers::pi_v<float> / static_cast<float>(margin));
    const float turnCosine = std::cos(angle);
    const float turnSine = std::sin(angle);
    const int count = std::max(range.last - range.first + 1, 0);
    const int tableStart = range.first - index + margin;
    float* const shaped = bell.data() + (count > 0 ? range.first : 0);
    const float* const cosine = cosines.data() + (count > 0 ? tableStart : 0);
    const float* const sine = sines.data() + (count > 0 ? tableStart : 0);
    for (int i = 0; i < count; ++i) {
        const float value = cosine[i] * turnCosine + sine[i] * turnSine;
        shaped[i] = value * 0.5F + 0.5F;
    }
    return range;
}

void LagMap::Penalise(int index, float centre, float depth) noexcept UTIL_NONBLOCKING
{
    const Range range = ShapeBell(index, centre);
    float* const weight = weights.data();
    for (int i = range.first; i <= range.last; ++i) {
        const float lowered = 1.0F - bell[static_cast<std::size_t>(i)] * depth;
        weight[i] = lowered < weight[i] ? lowered : weight[i];
    }
}

void LagMap::Mark(int found, float lag, float clarity) noexcept UTIL_NONBLOCKING
{
    const Range range = ShapeBell(found, lag);
    float* const weight = weights.data();
    for (int i = range.first; i <= range.last; ++i) {
        const float raised = bell[static_cast<std::size_t>(i)] * (clarity + 0.5F) + 1.0F;
        weight[i] = raised > weight[i] ? raised : weight[i];
    }
    const float depth = std::sqrt(clarity) * PenaltyDepth;
    Penalise(found / 2, lag * 0.5F, depth);
    Penalise(found * 2, lag * 2.0F, depth);
}

} // namespace DSP::Synapse
