// SPDX-License-Identifier: ISC
#pragma once

namespace DSP {

/// Modified Bessel function of the first kind and order 0, by a rational approximation for the
/// arguments of window functions, up to about 50 in size. [any]
double BesselI0(double x) noexcept;

} // namespace DSP
