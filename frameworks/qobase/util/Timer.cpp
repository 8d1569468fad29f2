// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Timer.h"

#include "frameworks/qobase/util/DebugTrace.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>
#include <utility>
#include <vector>

namespace Util {

using Clock = std::chrono::steady_clock;

struct PeriodicTimer::Entry {
    Clock::duration period;
    Callback callback;
    Clock::time_point deadline; // guarded by SharedThread::mutex
};

/// The module's timer thread.
///
/// `mutex` guards the list and the state. `lifeMutex` is held by whoever starts or ends the thread;
/// it comes before `mutex`, and the thread itself never takes it, since it may be waited for by
/// the holder.
class PeriodicTimer::SharedThread {
public:
    static SharedThread& Get()
    {
        static SharedThread instance;
        return instance;
    }
    SharedThread() = default;
    SharedThread(const SharedThread&) = delete;
    SharedThread(SharedThread&&) = delete;
    SharedThread& operator=(const SharedThread&) = delete;
    SharedThread& operator=(SharedThread&&) = delete;
    ~SharedThread();

    void Add(const std::shared_ptr<Entry>& entry);
    void Remove(const std::shared_ptr<Entry>& entry);

private:
    using Lock = std::unique_lock<std::mutex>;

    [[nodiscard]] bool IsOwnThread(const Lock& lock) const noexcept;
    void Insert(const std::shared_ptr<Entry>& entry);
    void EndWhenUnused();
    void Run();
    std::shared_ptr<Entry> WaitForDue(Lock& lock);

    std::mutex lifeMutex;
    std::thread thread; // guarded by lifeMutex

    std::mutex mutex;
    std::condition_variable changed; // list or state, in either direction
    std::vector<std::shared_ptr<Entry>> entries;
    const Entry* running = nullptr; // its callback runs right now; only compared
    bool alive = false;             // the thread looks at the list once more before it ends
    bool ending = false;            // the module is being unloaded with timers left
    std::thread::id threadId;
};

PeriodicTimer::SharedThread::~SharedThread()
{
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    changed.notify_all();
    if (!thread.joinable()) {
        return;
    }
    // A callback that ends the process gets here on the thread itself.
    if (thread.get_id() == std::this_thread::get_id()) {
        thread.detach();
    } else {
        thread.join();
    }
}

bool PeriodicTimer::SharedThread::IsOwnThread(const Lock&) const noexcept
{
    return alive && threadId == std::this_thread::get_id();
}

void PeriodicTimer::SharedThread::Insert(const std::shared_ptr<Entry>& timer)
{
    timer->deadline = Clock::now() + timer->period;
    entries.push_back(timer);
    changed.notify_all();
}

void PeriodicTimer::SharedThread::Add(const std::shared_ptr<Entry>& timer)
{
    {
        const Lock lock(mutex);
        if (IsOwnThread(lock)) {
            Insert(timer);
            return;
        }
    }
    const std::lock_guard life(lifeMutex);
    const Lock lock(mutex);
    if (!alive) {
        if (thread.joinable()) {
            thread.join(); // has left its loop for good, and needs no lock on the way out
        }
        thread = std::thread([this] { Run(); });
        threadId = thread.get_id();
        alive = true;
    }
    Insert(timer);
}

void PeriodicTimer::SharedThread::Remove(const std::shared_ptr<Entry>& timer)
{
    {
        Lock lock(mutex);
        std::erase(entries, timer);
        // From within a callback there is nothing to wait for. The thread ends after it when this
        // was the last timer, and is joined by the next one or by the module's unloading.
        if (IsOwnThread(lock)) {
            return;
        }
        changed.notify_all();
        changed.wait(lock, [&] { return running != timer.get(); });
    }
    EndWhenUnused();
}

void PeriodicTimer::SharedThread::EndWhenUnused()
{
    const std::lock_guard life(lifeMutex);
    {
        Lock lock(mutex);
        // A callback that outlives its own timer may still make a new one, which keeps the thread.
        changed.wait(lock, [this] { return !alive || !entries.empty(); });
        if (alive) {
            return;
        }
    }
    if (thread.joinable()) {
        thread.join();
    }
}

std::shared_ptr<PeriodicTimer::Entry> PeriodicTimer::SharedThread::WaitForDue(Lock& lock)
{
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
            return next;
        }
        changed.wait_until(lock, next->deadline);
    }
    return nullptr;
}

void PeriodicTimer::SharedThread::Run()
{
    Lock lock(mutex);
    while (auto current = WaitForDue(lock)) {
        running = current.get();
        lock.unlock();
        try {
            current->callback();
        } catch (...) {
            DebugTrace("A timer's callback failed");
        }
        current.reset(); // what the callback captured may own timers: not under the lock
        lock.lock();
        running = nullptr;
        changed.notify_all();
    }
    alive = false;
    changed.notify_all();
}

PeriodicTimer::PeriodicTimer(uint32_t periodMilliseconds, Callback callback)
    : entry(std::make_shared<Entry>(
          Entry{std::chrono::milliseconds(std::max<uint32_t>(periodMilliseconds, 1)),
                std::move(callback),
                {}}))
{
    SharedThread::Get().Add(entry);
}

PeriodicTimer::~PeriodicTimer()
{
    SharedThread::Get().Remove(entry);
}

} // namespace Util
