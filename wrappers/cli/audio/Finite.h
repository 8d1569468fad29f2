// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <span>

namespace Cli {

/// Replaces what is no finite number in single precision by 0 and returns how many were.
inline uint64_t SilenceNonFinite(std::span<double> samples)
{
    // From here on the nearest number in single precision is infinity.
    constexpr double TooGreat = 0x1.ffffffp127;
    const auto isBad = [](double sample) { return !(std::abs(sample) < TooGreat); };
    const auto count = std::count_if(samples.begin(), samples.end(), isBad);
    if (count > 0) {
        std::replace_if(samples.begin(), samples.end(), isBad, 0.0);
    }
    return static_cast<uint64_t>(count);
}

} // namespace Cli
