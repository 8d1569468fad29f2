// SPDX-License-Identifier: ISC
#pragma once

#include <cmath>

namespace AutoRepair {

/// What is added to a power, so that silence has a level: -120 dB.
inline constexpr double LeastPower = 1e-12;

/// Level of a power, full scale 1.0, in dB.
inline double ToDecibel(double power)
{
    return 10.0 * std::log10(power + LeastPower);
}

/// Power of a level in dB.
inline double ToPower(double decibel)
{
    return std::pow(10.0, decibel / 10.0);
}

} // namespace AutoRepair
