// SPDX-License-Identifier: ISC
#pragma once

#include <atomic>
#include <functional>

namespace Support {

// Each call of fsync() in a program that links FlushHook.cpp.
extern std::function<void(int descriptor)> onFlush; ///< comes first; set while nobody else flushes
extern std::atomic<int> flushError;                 ///< not 0: that it fails with
extern std::atomic<int> flushCount;

} // namespace Support
