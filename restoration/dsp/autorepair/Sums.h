// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace AutoRepair {

/// The sum of `values` in numbers of type `Number`; several are under way at once, since each
/// addition has to wait for the one before.
template <typename Number>
Number SumOf(std::span<const float> values)
{
    std::array<Number, 8> sums{};
    const std::size_t whole = values.size() / sums.size() * sums.size();
    for (std::size_t i = 0; i < whole; i += sums.size()) {
        for (std::size_t j = 0; j < sums.size(); ++j) {
            sums[j] += static_cast<Number>(values[i + j]);
        }
    }
    Number rest = 0;
    for (std::size_t i = whole; i < values.size(); ++i) {
        rest += static_cast<Number>(values[i]);
    }
    return ((sums[0] + sums[1]) + (sums[2] + sums[3])) +
           ((sums[4] + sums[5]) + (sums[6] + sums[7])) + rest;
}

} // namespace AutoRepair
