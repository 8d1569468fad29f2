// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace DSP::Kernels {

/// Half-band filters, of whose coefficients every other one is 0. Arrays have any alignment and
/// don't overlap. [process]
struct HalfBandKernels {
    /// Every second output: with P pairs of coefficients, `even` samples and the `odd` ones between
    /// them, of which the first P are older than even[0],
    ///
    ///     target[m] = even[m] / 2 + sum over i of coefficients[i] (odd[m + P - 1 - i] + odd[m + P
    ///     + i])
    ///
    /// added from the middle outwards. `odd` has count + 2 P - 1 samples.
    void (*decimate)(const float* coefficients,
                     std::size_t pairs,
                     const float* even,
                     const float* odd,
                     float* target,
                     std::size_t count) noexcept;
};

} // namespace DSP::Kernels
