// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/Vector.h"

/// The outcome of a comparison as bits, that of lane 0 lowest.
namespace DSP::Kernels::PUFFGUARD_LEVEL {

template <int LaneCount>
[[gnu::always_inline]] inline unsigned GetMask(Vector<int, LaneCount> lanes) noexcept
{
#if defined(__AVX512DQ__)
    if constexpr (LaneCount == 16) {
        return static_cast<unsigned>(__builtin_ia32_cvtd2mask512(lanes));
    }
#endif
#if defined(__AVX__)
    if constexpr (LaneCount == 8) {
        Vector<float, 8> signs;
        __builtin_memcpy(&signs, &lanes, sizeof signs);
        return static_cast<unsigned>(__builtin_ia32_movmskps256(signs));
    }
#endif
#if defined(__SSE__)
    if constexpr (LaneCount == 4) {
        Vector<float, 4> signs;
        __builtin_memcpy(&signs, &lanes, sizeof signs);
        return static_cast<unsigned>(__builtin_ia32_movmskps(signs));
    }
#endif
    unsigned bits = 0;
    for (int lane = 0; lane < LaneCount; ++lane) {
        bits |= (lanes[lane] != 0 ? 1U : 0U) << lane;
    }
    return bits;
}

} // namespace DSP::Kernels::PUFFGUARD_LEVEL
