// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/Matrix.h"

#include "frameworks/plugincore/dsp/kernels/LevelSets.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

using Lanes = Vector<float, LevelLanes>;

/// Sums of a row that are under way at once: enough, in two rows, to keep the adders busy.
/// Variables of their own, since compilers write an array back in every round of a loop.
struct FourSums {
    static constexpr std::size_t Columns = std::size_t{4} * LevelLanes;

    explicit FourSums(const float* source) noexcept
        : s0(Load<LevelLanes>(source))
        , s1(Load<LevelLanes>(source + LevelLanes))
        , s2(Load<LevelLanes>(source + 2 * LevelLanes))
        , s3(Load<LevelLanes>(source + 3 * LevelLanes))
    {
    }

    void Add(float left, const float* right) noexcept
    {
        const Lanes factor = Broadcast<LevelLanes>(left);
        s0 = s0 + factor * Load<LevelLanes>(right);
        s1 = s1 + factor * Load<LevelLanes>(right + LevelLanes);
        s2 = s2 + factor * Load<LevelLanes>(right + 2 * LevelLanes);
        s3 = s3 + factor * Load<LevelLanes>(right + 3 * LevelLanes);
    }

    void Put(float* target) const noexcept
    {
        Store(target, s0);
        Store(target + LevelLanes, s1);
        Store(target + 2 * LevelLanes, s2);
        Store(target + 3 * LevelLanes, s3);
    }

    Lanes s0, s1, s2, s3;
};

/// The same of what is left of a row.
struct OneSum {
    static constexpr std::size_t Columns = LevelLanes;

    explicit OneSum(const float* source) noexcept
        : sum(Load<LevelLanes>(source))
    {
    }

    void Add(float left, const float* right) noexcept
    {
        sum = sum + Broadcast<LevelLanes>(left) * Load<LevelLanes>(right);
    }

    void Put(float* target) const noexcept { Store(target, sum); }

    Lanes sum;
};

template <typename Sums>
void MultiplyOneRow(const MatrixProduct& product,
                    const float* left,
                    const float* right,
                    float* target) noexcept
{
    Sums sums(target);
    for (std::size_t i = 0; i < product.innerCount; ++i, right += product.rightDistance) {
        sums.Add(left[i], right);
    }
    sums.Put(target);
}

template <typename Sums>
void MultiplyTwoRows(const MatrixProduct& product,
                     const float* left,
                     const float* right,
                     float* target,
                     std::size_t targetDistance) noexcept
{
    const float* const nextLeft = left + product.leftDistance;
    Sums sums(target);
    Sums nextSums(target + targetDistance);
    for (std::size_t i = 0; i < product.innerCount; ++i, right += product.rightDistance) {
        sums.Add(left[i], right);
        nextSums.Add(nextLeft[i], right);
    }
    sums.Put(target);
    nextSums.Put(target + targetDistance);
}

/// All rows of some columns.
template <typename Sums>
void MultiplyColumns(const MatrixProduct& product,
                     std::size_t column,
                     float* target,
                     std::size_t targetDistance) noexcept
{
    const float* const right = product.right + column;
    std::size_t row = 0;
    for (; row + 2 <= product.rowCount; row += 2) {
        MultiplyTwoRows<Sums>(product,
                              product.left + row * product.leftDistance,
                              right,
                              target + row * targetDistance + column,
                              targetDistance);
    }
    if (row < product.rowCount) {
        MultiplyOneRow<Sums>(product,
                             product.left + row * product.leftDistance,
                             right,
                             target + row * targetDistance + column);
    }
}

void MultiplyAdd(const MatrixProduct& product, float* target, std::size_t targetDistance) noexcept
{
    std::size_t column = 0;
    for (; column + FourSums::Columns <= product.columnCount; column += FourSums::Columns) {
        MultiplyColumns<FourSums>(product, column, target, targetDistance);
    }
    for (; column < product.columnCount; column += OneSum::Columns) {
        MultiplyColumns<OneSum>(product, column, target, targetDistance);
    }
}

} // namespace

constinit const MatrixKernels Matrices = {
    .multiplyAdd = MultiplyAdd,
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
