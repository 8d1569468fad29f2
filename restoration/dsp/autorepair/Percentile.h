// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>
#include <cstddef>
#include <span>

namespace AutoRepair {

/// Between which sorted values a percentile of `count` values lies, 1 or more, and where between.
struct PercentilePlace {
    PercentilePlace(std::size_t count, double percent);

    std::size_t lower = 0; ///< rank from 0
    std::size_t upper = 0; ///< the same or the next one
    double part = 0;       ///< 0 to 1, of the way from one to the other
};

/// Two values of neighbouring rank, and how far from one to the other a percentile lies.
struct RankedPair {
    float lower = 0;
    float upper = 0;
    float part = 0; ///< 0 to 1

    /// The percentile of values none of which is below `floor`.
    double GetLimited(double floor) const
    {
        const double from = std::max(static_cast<double>(lower), floor);
        const double to = std::max(static_cast<double>(upper), floor);
        return from + (to - from) * static_cast<double>(part);
    }
};

/// The values of a percentile's ranks. Puts `values` into another order.
RankedPair SelectPair(std::span<float> values, const PercentilePlace& place);

/// The `percent`-th percentile of one value or more, between ranks by straight lines; 50 is the
/// median. Puts `values` into another order.
double Percentile(std::span<float> values, double percent);

} // namespace AutoRepair
