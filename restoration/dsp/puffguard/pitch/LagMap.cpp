// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/LagMap.h"

#include "restoration/dsp/puffguard/RunningExp.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace DSP::Synapse {

namespace {

constexpr double RiseSeconds = 0.001;
constexpr double FallSeconds = 0.015;
constexpr double RelaxSeconds = 0.06;
constexpr double MarginSeconds = 0.0001;
constexpr int LeastMargin = 8;
constexpr float PenaltyDepth = 0.9F;
static_assert(Kernels::LeastSmoothed == SmootherFloor);

std::size_t At(std::ptrdiff_t position)
{
    return static_cast<std::size_t>(position);
}

} // namespace

LagMap::LagMap(const AnalysisSizes& sizes, const Kernels::LagSearchKernels& newKernels)
    : kernels(newKernels)
    , maxLag(sizes.maxLag)
    , margin(std::max(
          LeastMargin,
          static_cast<int>(std::lround(static_cast<double>(sizes.decimatedRate) * MarginSeconds))))
    , angleOfLag(std::numbers::pi_v<float> / static_cast<float>(margin))
    , lagCount((maxLag + Kernels::ScoreBlock) / Kernels::ScoreBlock * Kernels::ScoreBlock)
    , lead((margin + Kernels::LagPadding - 1) / Kernels::LagPadding * Kernels::LagPadding)
    , weights(At(lead + lagCount + 2 * margin + Kernels::LagPadding), 1.0F)
    , smoothed(At(lagCount))
    , scores(At(lagCount + Kernels::LagPadding))
    , maxima(At(lagCount / 4))
{
    const auto rate = static_cast<double>(sizes.trackerRate);
    times = {.rise = GetSmootherCoefficient(RiseSeconds, rate),
             .fall = GetSmootherCoefficient(FallSeconds, rate),
             .relaxation = GetSmootherCoefficient(RelaxSeconds, rate)};
    for (int j = -margin; j <= margin; ++j) {
        const double angle = std::numbers::pi * j / margin;
        cosines.push_back(static_cast<float>(std::cos(angle)));
        sines.push_back(static_cast<float>(std::sin(angle)));
    }
    cosines.resize(cosines.size() + At(Kernels::LagPadding));
    sines.resize(cosines.size());
}

void LagMap::Reset() noexcept UTIL_NONBLOCKING
{
    std::fill(weights.begin(), weights.end(), 1.0F);
    std::fill(smoothed.begin(), smoothed.end(), 0.0F);
}

Kernels::LagScores LagMap::GetScores() noexcept UTIL_NONBLOCKING
{
    return {.values = scores.data(), .maxima = maxima.data(), .count = lagCount};
}

void LagMap::Score(const float* correlation, int firstLag) noexcept UTIL_NONBLOCKING
{
    const Kernels::LagState state{smoothed.data(), weights.data() + lead};
    kernels.score(times, correlation, state, firstLag, GetScores());
    first = firstLag;
}

int LagMap::FindBest() noexcept UTIL_NONBLOCKING
{
    return std::max(kernels.findFirstLargest(GetScores()), first); // where nothing is left, 0
}

void LagMap::ErasePeak(int found) noexcept UTIL_NONBLOCKING
{
    kernels.eraseScore(GetScores(), found, maxLag);
}

/// The bell cos(pi (i - centre) / b) * 0.5 + 0.5 of the lags i within b of `index`. The cosine of
/// each lag comes from the table by turning it through what `centre` lies off `index`. That differs
/// from the cosine taken directly in the last bits only, by less than 1e-6, at a fraction of the
/// cost. It is good enough: weights lie between 0.1 and 2.5 and only rank lags whose own values
/// carry roundings as large.
Kernels::Bell LagMap::MakeBell(int index, float centre) const noexcept UTIL_NONBLOCKING
{
    const float angle = (centre - static_cast<float>(index)) * angleOfLag;
    return {.index = index, .cosine = std::cos(angle), .sine = std::sin(angle)};
}

void LagMap::Mark(int found, float lag, float clarity) noexcept UTIL_NONBLOCKING
{
    const Kernels::BellTable table{cosines.data(), sines.data(), margin};
    float* const atZero = weights.data() + lead;
    kernels.raise(table, MakeBell(found, lag), clarity + 0.5F, atZero);
    const float depth = std::sqrt(clarity) * PenaltyDepth;
    kernels.lower(table, MakeBell(found / 2, lag * 0.5F), depth, atZero);
    if (found * 2 - margin <= maxLag) {
        kernels.lower(table, MakeBell(found * 2, lag * 2.0F), depth, atZero);
    }
}

std::span<const float> LagMap::GetWeights() const noexcept
{
    return std::span(weights).subspan(At(lead), At(maxLag + 1));
}

} // namespace DSP::Synapse
