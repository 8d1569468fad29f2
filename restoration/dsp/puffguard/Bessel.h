// SPDX-License-Identifier: ISC
#pragma once

namespace DSP {

/// Modified Bessel function of the first kind and order 0, by a rational approximation that
/// is good to 1e-9 of the value up to 15 in size and leaves it beyond. [any]
double BesselI0(double x) noexcept;

} // namespace DSP
