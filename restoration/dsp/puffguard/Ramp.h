// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

namespace DSP {

/// 0 up to `low`, 1 from `high` on, a straight line between. [process]
inline float Ramp(float value, float low, float high) noexcept UTIL_NONBLOCKING
{
    if (value <= low) {
        return 0;
    }
    return value >= high ? 1.0F : (value - low) / (high - low);
}

} // namespace DSP
