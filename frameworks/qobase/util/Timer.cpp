// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Timer.h"

#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/DebugTrace.h"
#include "frameworks/qobase/util/Thread.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <stdexcept>
#include <thread>
#include <utility>
#include <vector>

namespace Util {
namespace {

// What a callback that is under way when the process ends may take to return.
constexpr uint32_t EndLimitMilliseconds = 300;

} // namespace

using Clock = std::chrono::steady_clock;

/// What a timer and the thread have in common.
struct PeriodicTimer::Entry {
    Clock::duration period;
    Callback callback;
    std::shared_ptr<SharedThread> home; // this, and not the module's: a timer may outlive that one
    Clock::time_point deadline;         // guarded by the home's lock
};

/// The module's timer thread.
///
/// `lock` guards the list and the state. `lifeLock` is held by whoever starts or ends the thread;
/// it comes before `lock`, and the thread itself never takes it, since it may be waited for by
/// the holder.
class PeriodicTimer::SharedThread : public std::enable_shared_from_this<SharedThread> {
public:
    static std::shared_ptr<SharedThread> Get();
    SharedThread() = default;
    SharedThread(const SharedThread&) = delete;
    SharedThread(SharedThread&&) = delete;
    SharedThread& operator=(const SharedThread&) = delete;
    SharedThread& operator=(SharedThread&&) = delete;
    ~SharedThread() = default;

    /// Throws when there is no thread and the system has none to give.
    void Add(const std::shared_ptr<Entry>& timer);
    void Remove(const std::shared_ptr<Entry>& timer);

private:
    class Ticker final : public Thread {
    public:
        explicit Ticker(SharedThread& newOwner)
            : Thread("Module Timer", ThreadPriority::Normal)
            , owner(newOwner)
        {
        }

    protected:
        void Run(const std::stop_token& /*stop*/) override
        {
            // All that is touched from here on, also when the thread was let go.
            const std::shared_ptr<SharedThread> held = owner.shared_from_this();
            held->RunTimers();
        }

    private:
        SharedThread& owner;
    };
    class EndOfModule;

    bool IsOwnThread() const UTIL_REQUIRES(lock)
    {
        return alive && threadId == std::this_thread::get_id();
    }
    bool AddOnOwnThread(const std::shared_ptr<Entry>& timer);
    void Insert(const std::shared_ptr<Entry>& timer) UTIL_REQUIRES(lock);
    bool LeaveList(const std::shared_ptr<Entry>& timer);
    void EndWhenUnused();
    void LetGo();
    void MarkEnded() UTIL_REQUIRES(lock);
    void RunTimers();
    std::shared_ptr<Entry> WaitForDue();
    void Finish();

    CriticalSection lifeLock{"Timer Life"};
    CriticalSection lock{"Timer List"};
    std::condition_variable_any changed; // list or state, in either direction
    std::vector<std::shared_ptr<Entry>> entries UTIL_GUARDED_BY(lock);
    // Its callback runs right now; only compared.
    const Entry* running UTIL_GUARDED_BY(lock) = nullptr;
    // The thread looks at the list once more before it ends.
    bool alive UTIL_GUARDED_BY(lock) = false;
    // The process ends, or the module is being unloaded, with timers left.
    bool ending UTIL_GUARDED_BY(lock) = false;
    std::thread::id threadId UTIL_GUARDED_BY(lock){};
    Ticker ticker{*this};
};

/// Stands among what is destroyed when the process ends or the module is being unloaded. Nobody
/// waits long for a thread then: a callback of an instance that is still alive may never return,
/// and the end of a finished thread may be held up by a runtime that unloads.
class PeriodicTimer::SharedThread::EndOfModule {
public:
    EndOfModule() = default;
    EndOfModule(const EndOfModule&) = delete;
    EndOfModule(EndOfModule&&) = delete;
    EndOfModule& operator=(const EndOfModule&) = delete;
    EndOfModule& operator=(EndOfModule&&) = delete;
    ~EndOfModule() { thread->LetGo(); }

    const std::shared_ptr<SharedThread> thread = std::make_shared<SharedThread>();
};

std::shared_ptr<PeriodicTimer::SharedThread> PeriodicTimer::SharedThread::Get()
{
    static const EndOfModule Module;
    return Module.thread;
}

void PeriodicTimer::SharedThread::LetGo()
{
    {
        const CriticalSectionGuard guard(lock);
        ending = true;
        changed.notify_all();
    }
    ticker.LetGo(EndLimitMilliseconds);
    // Should its callback never return, nobody waits for it.
    const CriticalSectionGuard guard(lock);
    running = nullptr;
    MarkEnded();
}

void PeriodicTimer::SharedThread::MarkEnded()
{
    alive = false;
    threadId = std::thread::id();
    changed.notify_all();
}

void PeriodicTimer::SharedThread::Insert(const std::shared_ptr<Entry>& timer)
{
    timer->deadline = Clock::now() + timer->period;
    entries.push_back(timer);
    changed.notify_all();
}

bool PeriodicTimer::SharedThread::AddOnOwnThread(const std::shared_ptr<Entry>& timer)
{
    const CriticalSectionGuard guard(lock);
    if (!IsOwnThread()) {
        return false;
    }
    Insert(timer);
    return true;
}

void PeriodicTimer::SharedThread::Add(const std::shared_ptr<Entry>& timer)
{
    if (AddOnOwnThread(timer)) {
        return;
    }
    const CriticalSectionGuard life(lifeLock);
    const CriticalSectionGuard guard(lock);
    if (!alive) {
        // A former thread has left its loop for good, and needs no lock on the way out.
        if (!ticker.Start()) {
            throw std::runtime_error("The timer's thread can't be made");
        }
        alive = true;
    }
    Insert(timer);
}

// False when there is nothing to wait for: from within a callback. The thread ends after it when
// this was the last timer, and is joined by the next one.
bool PeriodicTimer::SharedThread::LeaveList(const std::shared_ptr<Entry>& timer)
{
    const CriticalSectionGuard guard(lock);
    std::erase(entries, timer);
    if (IsOwnThread()) {
        return false;
    }
    changed.notify_all();
    while (running == timer.get()) {
        changed.wait(lock);
    }
    return true;
}

void PeriodicTimer::SharedThread::Remove(const std::shared_ptr<Entry>& timer)
{
    if (LeaveList(timer)) {
        EndWhenUnused();
    }
}

void PeriodicTimer::SharedThread::EndWhenUnused()
{
    const CriticalSectionGuard life(lifeLock);
    {
        const CriticalSectionGuard guard(lock);
        // A callback that outlives its own timer may still make a new one, which keeps the thread.
        while (alive && entries.empty()) {
            changed.wait(lock);
        }
        if (alive) {
            return;
        }
    }
    ticker.Wait();
}

std::shared_ptr<PeriodicTimer::Entry> PeriodicTimer::SharedThread::WaitForDue()
{
    const CriticalSectionGuard guard(lock);
    while (!entries.empty() && !ending) {
        const auto next =
            *std::min_element(entries.begin(), entries.end(), [](const auto& a, const auto& b) {
                return a->deadline < b->deadline;
            });
        const auto now = Clock::now();
        if (next->deadline <= now) {
            next->deadline += next->period;
            if (next->deadline < now) {
                next->deadline = now + next->period;
            }
            running = next.get();
            return next;
        }
        changed.wait_until(lock, next->deadline);
    }
    MarkEnded();
    return nullptr;
}

void PeriodicTimer::SharedThread::Finish()
{
    const CriticalSectionGuard guard(lock);
    running = nullptr;
    changed.notify_all();
}

void PeriodicTimer::SharedThread::RunTimers()
{
    {
        const CriticalSectionGuard guard(lock);
        threadId = std::this_thread::get_id();
    }
    while (auto current = WaitForDue()) {
        try {
            current->callback();
        } catch (...) {
            DebugTrace("A timer's callback failed");
        }
        current.reset(); // what the callback captured may own timers: not under the lock
        Finish();
    }
}

PeriodicTimer::PeriodicTimer(uint32_t periodMilliseconds, Callback callback)
    : entry(std::make_shared<Entry>(
          Entry{std::chrono::milliseconds(std::max<uint32_t>(periodMilliseconds, 1)),
                std::move(callback),
                SharedThread::Get(),
                {}}))
{
    entry->home->Add(entry);
}

PeriodicTimer::~PeriodicTimer()
{
    entry->home->Remove(entry);
}

} // namespace Util
