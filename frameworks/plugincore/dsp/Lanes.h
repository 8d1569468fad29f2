// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <cstring>

namespace DSP {

/// Four floats that go through the same operations; the compiler maps them to the machine's own.
using Lanes = float __attribute__((vector_size(16)));

inline constexpr std::ptrdiff_t LaneCount = 4;

/// Four floats from any address. [process]
inline Lanes Load(const float* source) noexcept
{
    Lanes lanes;
    std::memcpy(&lanes, source, sizeof lanes);
    return lanes;
}

/// Four floats to any address. [process]
inline void Store(float* target, Lanes lanes) noexcept
{
    std::memcpy(target, &lanes, sizeof lanes);
}

/// The same value four times. [process]
inline Lanes Broadcast(float value) noexcept
{
    return Lanes{value, value, value, value};
}

/// Last one first. [process]
inline Lanes Mirror(Lanes lanes) noexcept
{
    return __builtin_shufflevector(lanes, lanes, 3, 2, 1, 0);
}

} // namespace DSP
