// SPDX-License-Identifier: ISC
#pragma once

#include <complex>
#include <cstddef>
#include <numbers>
#include <vector>

namespace Support {

using Spectrum = std::vector<std::complex<double>>;

/// The plain sum of x[n] exp(-2 pi i k n / F) in double precision: recursive, the sum over even and
/// odd places, written as defined. F is a power of two.
inline Spectrum TransformInDouble(const Spectrum& values)
{
    const std::size_t count = values.size();
    if (count == 1) {
        return values;
    }
    Spectrum even;
    Spectrum odd;
    for (std::size_t i = 0; i < count; i += 2) {
        even.push_back(values[i]);
        odd.push_back(values[i + 1]);
    }
    even = TransformInDouble(even);
    odd = TransformInDouble(odd);
    Spectrum result(count);
    for (std::size_t k = 0; k < count / 2; ++k) {
        const double turn = -2 * std::numbers::pi * static_cast<double>(k);
        const std::complex<double> turned =
            std::polar(1.0, turn / static_cast<double>(count)) * odd[k];
        result[k] = even[k] + turned;
        result[k + count / 2] = even[k] - turned;
    }
    return result;
}

} // namespace Support
