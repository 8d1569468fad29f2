// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/Percentile.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace AutoRepair {

PercentilePlace::PercentilePlace(std::size_t count, double percent)
{
    const double rank = static_cast<double>(count - 1) * percent / 100.0;
    lower = static_cast<std::size_t>(std::floor(rank));
    upper = std::min(lower + 1, count - 1);
    part = rank - std::floor(rank);
}

RankedPair SelectPair(std::span<float> values, const PercentilePlace& place)
{
    const auto at = values.begin() + static_cast<std::ptrdiff_t>(place.lower);
    std::nth_element(values.begin(), at, values.end());
    const float lower = *at;
    const float upper = place.upper > place.lower ? *std::min_element(at + 1, values.end()) : lower;
    return {lower, upper, static_cast<float>(place.part)};
}

double Percentile(std::span<float> values, double percent)
{
    const PercentilePlace place(values.size(), percent);
    const RankedPair pair = SelectPair(values, place);
    return pair.GetLimited(-std::numeric_limits<double>::infinity());
}

} // namespace AutoRepair
