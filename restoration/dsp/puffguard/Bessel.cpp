// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/Bessel.h"

#include <array>

namespace DSP {

double BesselI0(double x) noexcept
{
    // Powers of x squared, the highest first.
    constexpr std::array Numerator = {2.10580722890567e-23,
                                      3.80715242345326e-20,
                                      4.794402575483e-17,
                                      4.35125971262668e-14,
                                      3.0093112711296e-11,
                                      1.60224679395361e-08,
                                      6.54858370096785e-06,
                                      0.00202591084143397,
                                      0.463076284721,
                                      75.4337328948189,
                                      8307.92541809429,
                                      571661.130563785,
                                      21641557.2361227,
                                      356644482.244025,
                                      1440482982.27235};
    if (x == 0) {
        return 1.0;
    }
    const double y = x * x;
    double numerator = 0;
    for (const double coefficient : Numerator) {
        numerator = numerator * y + coefficient;
    }
    const double denominator =
        ((y - 3076.46912682801) * y + 3476263.32405882) * y - 1440482982.27235;
    return -numerator / denominator;
}

} // namespace DSP
