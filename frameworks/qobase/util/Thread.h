// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/PlatformThread.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>

namespace Util {

/// A thread with a name and a priority, which can be started again after it has finished. While it
/// exists the module stays loaded.
///
/// A derived class ends its own Run() before its fields go, by Wait() in its destructor; what Run()
/// still uses after a Kill() that it didn't follow, it must hold by itself.
///
/// Threads: [any], but not on the processing side.
class Thread {
public:
    /// Whether Run() may use COM objects, on a platform that has them.
    enum class UsesCom { No, Yes };
    /// What Kill() and the destructor grant a thread to end, in milliseconds.
    static constexpr uint32_t KillLimitMilliseconds = 2000;

    Thread(const String& name, ThreadPriority priority, UsesCom usesCom = UsesCom::No);
    Thread(const Thread&) = delete;
    Thread(Thread&&) = delete;
    Thread& operator=(const Thread&) = delete;
    Thread& operator=(Thread&&) = delete;
    /// Kills a thread that runs.
    virtual ~Thread();

    /// Waits until a thread that runs has finished, then makes a new one. False when the system has
    /// none to give, or when it is the thread itself that asks.
    [[nodiscard]] bool Start();
    /// From Start() until OnFinished() has returned.
    [[nodiscard]] bool IsRunning();
    /// Waits for the thread's end, without limit when none is given. True when no thread is left,
    /// or none was ever started; false after the limit, and on the thread itself.
    bool Wait(std::optional<uint32_t> limitMilliseconds = std::nullopt);
    /// Asks Run() to end, and waits for as long as KillLimitMilliseconds. A thread that goes on all
    /// the same is let go: it counts as ended, keeps the module loaded for good, and touches this
    /// object no more than Run() does.
    void Kill();
    /// Kill() while the process ends or the module is being unloaded: a thread that has left Run()
    /// isn't waited for any further, since a runtime that is about to end may hold it up.
    void LetGo(uint32_t limitMilliseconds);

    [[nodiscard]] const String& GetName() const noexcept;

    static void Sleep(uint32_t milliseconds);

protected:
    /// The thread's work. What it throws is traced and dropped. `stop` is set by Kill().
    virtual void Run(const std::stop_token& stop) = 0;
    /// After Run(), on the same thread. Must return soon: Kill() waits for it without limit.
    virtual void OnFinished() {}

private:
    class Shared;

    const std::shared_ptr<Shared> shared; // with the thread, which may outlive this object
};

} // namespace Util
