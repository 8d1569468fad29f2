// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

/// Marks a function of the processing side, behind its noexcept: it does not wait, allocate or
/// call the system. Checked where the compiler knows the attribute.
#if defined(__has_cpp_attribute)
#if __has_cpp_attribute(clang::nonblocking)
#define UTIL_NONBLOCKING [[clang::nonblocking]]
#endif
#endif
#ifndef UTIL_NONBLOCKING
#define UTIL_NONBLOCKING
#endif

namespace Util {

/// From here to the end of the scope, this thread's floating-point unit takes denormal numbers as
/// zero and gives zero for them; then its former mode is back. They would slow fading tails down by
/// an order of magnitude. Without effect where the processor isn't known. [process]
class ScopedDenormalGuard {
public:
    ScopedDenormalGuard() noexcept UTIL_NONBLOCKING;
    ScopedDenormalGuard(const ScopedDenormalGuard&) = delete;
    ScopedDenormalGuard(ScopedDenormalGuard&&) = delete;
    ScopedDenormalGuard& operator=(const ScopedDenormalGuard&) = delete;
    ScopedDenormalGuard& operator=(ScopedDenormalGuard&&) = delete;
    ~ScopedDenormalGuard();

private:
    uint64_t savedMode;
};

} // namespace Util
