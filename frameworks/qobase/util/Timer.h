// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace Util {

/// Calls back at a steady period. All timers of the module share one thread, which starts with the
/// first timer and has ended when the destructor of the last returns, so that the module can be
/// unloaded. Callbacks of several timers run one after another: keep them short.
///
/// Threads: [any], but not on the processing side. A callback may make and destroy timers, its own
/// included.
class PeriodicTimer {
public:
    using Callback = std::function<void()>;

    /// First call after one period. `periodMilliseconds` is at least 1; 0 counts as 1. Ticks that
    /// come too late are left out, not made up for. What the callback throws is traced and dropped.
    PeriodicTimer(uint32_t periodMilliseconds, Callback callback);
    PeriodicTimer(const PeriodicTimer&) = delete;
    PeriodicTimer(PeriodicTimer&&) = delete;
    PeriodicTimer& operator=(const PeriodicTimer&) = delete;
    PeriodicTimer& operator=(PeriodicTimer&&) = delete;
    /// Waits for a running callback of this timer, unless called from within it; none comes after.
    ~PeriodicTimer();

private:
    struct Entry;
    class SharedThread;

    std::shared_ptr<Entry> entry; // shared with the thread while a callback runs
};

} // namespace Util
