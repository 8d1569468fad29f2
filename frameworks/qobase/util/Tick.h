// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <chrono>
#include <cstdint>

namespace Util {

/// Milliseconds of a clock that never goes back; wraps after 49 days, so use differences. Never 0:
/// a kept tick of 0 means "never". [any]
[[nodiscard]] uint32_t GetTickCount() noexcept UTIL_NONBLOCKING;

/// Measures spans of time. Threads: one at a time.
class Stopwatch {
public:
    /// Starts at once.
    Stopwatch() noexcept { Start(); }
    /// Starts again from zero.
    void Start() noexcept { begin = std::chrono::steady_clock::now(); }
    /// Seconds since the start; the watch goes on.
    [[nodiscard]] double Stop() const noexcept
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
    }

private:
    std::chrono::steady_clock::time_point begin;
};

} // namespace Util
