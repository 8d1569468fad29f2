// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/HostCallback.h"
#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/Timer.h"

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>

/// The tick of an instance: does the UI side's idle work whenever the UI lock is free, and notifies
/// the host of what that has brought once the lock is free again, since the host may answer with
/// calls of its own, on any thread.
///
/// Threads: made, started and stopped by the instance [setup]; ticks come on the module's timer
/// thread, and one that finds the UI lock taken is left out.
class IdleTimer {
public:
    struct Setup {
        Util::CriticalSection& uiLock;
        HostCallback& host;
        const std::atomic<bool>& isActive; ///< false: ticks do nothing
        std::function<void()> work;        ///< under the UI lock
        /// Brings a parameter's value, by its index, up to date; under the UI lock.
        std::function<void(ParamEventRecord&)> refreshParam;
        std::function<uint32_t(DSP::Context)> readLatency; ///< samples of now; without the lock
    };
    explicit IdleTimer(Setup newSetup);

    /// No period, no ticks.
    void Start(uint32_t periodMilliseconds);
    /// Waits for a running tick; none comes after.
    void Stop() { timer.reset(); }

private:
    void Tick();
    void Refresh(HostCallback::Notification& notification) const;

    const Setup setup;
    std::unique_ptr<Util::PeriodicTimer> timer;
};
