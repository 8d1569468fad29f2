// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace DSP::Kernels {

/// Values are compared in groups of this many.
inline constexpr std::size_t RankGroup = 16;

/// Two values that follow each other in a sorted list.
struct RankedValues {
    float lower;
    float upper; ///< the same one at the list's end
};

/// Values by their place in a sorted list. [process]
struct RankKernels {
    /// Those of ranks `rank` and rank + 1, from 0, of `count` numbers, without NaN. For short
    /// lists, of which it compares each value with each. `values` has room for whole groups, which
    /// is overwritten.
    RankedValues (*select)(float* values, std::size_t count, std::size_t rank) noexcept;
};

} // namespace DSP::Kernels
