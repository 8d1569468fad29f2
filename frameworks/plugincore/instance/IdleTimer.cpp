// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/IdleTimer.h"

#include <exception>
#include <utility>

IdleTimer::IdleTimer(Setup newSetup)
    : setup(std::move(newSetup))
{
}

void IdleTimer::Start(uint32_t periodMilliseconds)
{
    if (periodMilliseconds != 0) {
        timer = std::make_unique<Util::PeriodicTimer>(periodMilliseconds, [this] { Tick(); });
    }
}

void IdleTimer::Tick()
{
    if (!setup.isActive || !setup.uiLock.TryEnter()) {
        return;
    }
    std::vector<HostCallback::Notification> notifications;
    std::exception_ptr failure;
    {
        const Util::CriticalSectionGuard guard(setup.uiLock, std::adopt_lock);
        if (!setup.isActive) {
            return; // the lock came with the end of the instance's work
        }
        setup.host.Hold();
        try {
            setup.work();
        } catch (...) {
            failure = std::current_exception(); // the host is still notified of what was done
        }
        notifications = setup.host.TakeHeld();
    }
    for (HostCallback::Notification& notification : notifications) {
        Refresh(notification);
        setup.host.Send(notification);
    }
    if (failure) {
        std::rethrow_exception(failure); // to the timer, which notes it
    }
}

// What counts is what there is now: audio may have started meanwhile and changed a latency, the
// host may have set a parameter.
void IdleTimer::Refresh(HostCallback::Notification& notification) const
{
    if (notification.opcode == HostOpcodeLatencyChanged) {
        notification.latency = setup.readLatency(notification.context);
    }
    // Whoever has the lock may be at the disk, and all instances share the timer.
    if (notification.opcode == HostOpcodeParamEvent && setup.uiLock.TryEnter()) {
        const Util::CriticalSectionGuard guard(setup.uiLock, std::adopt_lock);
        setup.refreshParam(notification.event);
    }
}
