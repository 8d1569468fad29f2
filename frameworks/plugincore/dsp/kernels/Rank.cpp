// SPDX-License-Identifier: ISC
// Compiled for each level.
#include "frameworks/plugincore/dsp/kernels/Rank.h"

#include "frameworks/plugincore/dsp/kernels/LevelSets.h"
#include "frameworks/plugincore/dsp/kernels/Vector.h"

namespace DSP::Kernels::PUFFGUARD_LEVEL {

namespace {

using Lanes = Vector<float, LevelLanes>;
using Counts = Vector<int, LevelLanes>;

float GetGreatest(const Lanes& lanes) noexcept
{
    float greatest = lanes[0];
    for (int i = 1; i < LevelLanes; ++i) {
        greatest = lanes[i] > greatest ? lanes[i] : greatest;
    }
    return greatest;
}

/// How many of `values` are below each lane.
[[gnu::always_inline]] inline Counts
CountBelow(const float* values, std::size_t count, const Lanes& lanes) noexcept
{
    Counts below = {};
    for (std::size_t i = 0; i < count; ++i) {
        below -= Broadcast<LevelLanes>(values[i]) < lanes; // -1 where it is so
    }
    return below;
}

/// The value of a rank is the greatest one of those that no more than so many are below.
RankedValues Select(float* values, std::size_t count, std::size_t rank) noexcept
{
    const Lanes none = Broadcast<LevelLanes>(-__builtin_inff());
    const auto last = static_cast<int>(count - 1);
    const auto lowerRank = static_cast<int>(rank);
    const int upperRank = lowerRank < last ? lowerRank + 1 : last;
    for (std::size_t i = count; i % RankGroup != 0; ++i) {
        values[i] = values[0];
    }
    Lanes lower = none;
    Lanes upper = none;
    for (std::size_t i = 0; i < count; i += LevelLanes) {
        const Lanes lanes = Load<LevelLanes>(values + i);
        const Counts below = CountBelow(values, count, lanes);
        const Lanes low = below <= lowerRank ? lanes : none;
        const Lanes high = below <= upperRank ? lanes : none;
        lower = low > lower ? low : lower;
        upper = high > upper ? high : upper;
    }
    return {GetGreatest(lower), GetGreatest(upper)};
}

} // namespace

constinit const RankKernels Ranks = {
    .select = Select,
};

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
