// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Tick.h"

namespace Util {

uint32_t GetTickCount() noexcept UTIL_NONBLOCKING
{
    const auto sinceStart = std::chrono::steady_clock::now().time_since_epoch();
    const auto milliseconds =
        std::chrono::duration_cast<std::chrono::milliseconds>(sinceStart).count();
    const auto tick = static_cast<uint32_t>(milliseconds);
    return tick == 0 ? 1 : tick;
}

} // namespace Util
