// SPDX-License-Identifier: ISC
#pragma once

#include <cmath>
#include <numbers>

namespace AutoRepair {

/// What is added to a power, so that silence has a level: -120 dB.
inline constexpr double LeastPower = 1e-12;

/// Of a power that grows by e. To base e, functions take half as long as to base 10.
inline constexpr double DecibelsOfE = 10.0 / std::numbers::ln10;

/// Level of a power, full scale 1.0, in dB.
inline double ToDecibel(double power)
{
    return DecibelsOfE * std::log(power + LeastPower);
}

/// Power of a level in dB.
inline double ToPower(double decibel)
{
    return std::exp(decibel / DecibelsOfE);
}

} // namespace AutoRepair
