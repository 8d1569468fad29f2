// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace DSP::Kernels {

/// Columns come in groups of this many; rows are filled up with anything.
inline constexpr std::size_t MatrixColumns = 16;

/// `columns`, rounded up to whole groups.
constexpr std::size_t RoundUpColumns(std::size_t columns) noexcept
{
    return (columns + MatrixColumns - 1) / MatrixColumns * MatrixColumns;
}

/// Factors of a product: `left` has `rowCount` rows of `innerCount` floats, `right` has
/// `innerCount` rows of `columnCount` floats, a multiple of MatrixColumns. From one row to the next
/// there are as many floats as the distance says.
struct MatrixProduct {
    std::size_t rowCount;
    std::size_t innerCount;
    std::size_t columnCount;
    const float* left;
    std::size_t leftDistance;
    const float* right;
    std::size_t rightDistance;
};

/// Products of small matrices. Arrays have any alignment; the target doesn't overlap the factors.
/// [process]
struct MatrixKernels {
    /// target[r][c] += left[r][i] * right[i][c], one i after the other from the first on.
    void (*multiplyAdd)(const MatrixProduct& product,
                        float* target,
                        std::size_t targetDistance) noexcept;
};

} // namespace DSP::Kernels
