// SPDX-License-Identifier: ISC
#pragma once

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace AutoRepair {

/// The even number of samples next to `seconds`.
inline int EvenLength(double seconds, double sampleRate)
{
    return static_cast<int>(std::nearbyint(seconds * sampleRate / 2)) * 2;
}

/// One period of a Hann window: the first value is 0, the one in the middle 1.
inline std::vector<double> MakeHann(int length)
{
    std::vector<double> window(static_cast<std::size_t>(length));
    for (int i = 0; i < length; ++i) {
        window[static_cast<std::size_t>(i)] =
            0.5 + 0.5 * std::cos(std::numbers::pi * (2 * i - length) / length);
    }
    return window;
}

} // namespace AutoRepair
