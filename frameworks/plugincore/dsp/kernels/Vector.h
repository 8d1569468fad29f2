// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/LevelSets.h"

#include <cstddef>

/// Vectors for the sources that are compiled for each level. They are the compiler's own: + - * /
/// and comparisons work lane by lane.
namespace DSP::Kernels::PUFFGUARD_LEVEL {

#if defined(__AVX512F__)
inline constexpr int LevelLanes = 16;
#elif defined(__AVX2__)
inline constexpr int LevelLanes = 8;
#else
inline constexpr int LevelLanes = 4;
#endif

/// A number of lanes as an argument.
template <int LaneCount>
struct LaneConstant {
    static constexpr int Value = LaneCount;
};

template <typename Number, int LaneCount>
struct VectorType {
    typedef Number Type __attribute__((vector_size(sizeof(Number) * LaneCount)));
    /// The same in memory, wherever a number may lie.
    typedef Number Unaligned
        __attribute__((vector_size(sizeof(Number) * LaneCount), aligned(alignof(Number))));
};

/// A vector of one lane works the same way.
template <typename Number, int LaneCount>
using Vector = typename VectorType<Number, LaneCount>::Type;

/// Lanes from any address. They are accessed as what they are: a copy of bytes could change
/// everything, and plans would be read again in each round of a loop.
template <int LaneCount, typename Number>
[[gnu::always_inline]] inline Vector<Number, LaneCount> Load(const Number* source) noexcept
{
    using Unaligned = typename VectorType<Number, LaneCount>::Unaligned;
    return *reinterpret_cast<const Unaligned*>(source);
}

/// Lanes to any address.
template <typename Lanes, typename Number>
[[gnu::always_inline]] inline void Store(Number* target, const Lanes& lanes) noexcept
{
    using Unaligned = typename VectorType<Number, sizeof(Lanes) / sizeof(Number)>::Unaligned;
    *reinterpret_cast<Unaligned*>(target) = lanes;
}

/// The same value in every lane.
template <int LaneCount, typename Number>
[[gnu::always_inline]] inline Vector<Number, LaneCount> Broadcast(Number value) noexcept
{
    return value - Vector<Number, LaneCount>{}; // a sum would turn -0 into 0
}

/// Calls step(i, integral constant of a lane count) for all of 0 to count - 1: the level's vectors
/// first, then what is left one by one. A loop like this gives the same bits on every level as long
/// as no step depends on another.
template <typename Step>
[[gnu::always_inline]] inline void ForEachVector(std::size_t count, const Step& step) noexcept
{
    std::size_t i = 0;
    for (; i + LevelLanes <= count; i += LevelLanes) {
        step(i, LaneConstant<LevelLanes>{});
    }
    for (; i < count; ++i) {
        step(i, LaneConstant<1>{});
    }
}

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
