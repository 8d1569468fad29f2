// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace DSP::Kernels {

/// Windows and overlapped sums. Arrays have any alignment and don't overlap unless they are the
/// same. All are [process].
struct OverlapKernels {
    /// target[i] = a[i] * b[i]
    void (*multiply)(const float* a, const float* b, float* target, std::size_t count) noexcept;

    /// target[i] += a[i] * b[i]
    void (*multiplyAdd)(const float* a, const float* b, float* target, std::size_t count) noexcept;
};

} // namespace DSP::Kernels
