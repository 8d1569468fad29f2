// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstddef>

namespace DSP::Kernels {

/// Three second-order sections in series, a0 = 1, in transposed direct form II. Section s has its
/// values at index s of each array; the last index is idle.
struct Cascade {
    static constexpr std::size_t SectionCount = 3;
    using Values = std::array<float, SectionCount + 1>;

    Values b0{};
    Values b1{};
    Values b2{};
    Values a1{};
    Values a2{};
    Values offset{}; ///< what is added to each section's input
    Values first{};  ///< state
    Values second{}; ///< state
};

/// Recursive filters. All are [process].
struct CascadeKernels {
    /// Takes `count` samples through the sections, each of which does
    ///
    ///     x += offset
    ///     y = b0 x + first
    ///     first = b1 x - a1 y + second, from left to right
    ///     second = b2 x - a2 y
    ///
    /// and writes the last one's outputs. `outputs` may be `samples`.
    void (*run)(Cascade& cascade,
                const float* samples,
                float* outputs,
                std::ptrdiff_t count) noexcept;
};

} // namespace DSP::Kernels
