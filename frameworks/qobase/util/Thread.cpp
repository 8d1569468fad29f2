// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Thread.h"

#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/DebugTrace.h"

#include <chrono>
#include <condition_variable>
#include <exception>
#include <thread>
#include <utility>

namespace Util {

/// What a Thread and the thread itself have in common. `lock` guards all that changes; Run() and
/// OnFinished() run outside it.
class Thread::Shared {
public:
    using Limit = std::optional<uint32_t>; // milliseconds; empty: none

    Shared(const String& newName, ThreadPriority newPriority, UsesCom newUsesCom)
        : name(newName)
        , priority(newPriority)
        , usesCom(newUsesCom)
        , lock(String("%1 critical section").arg(newName))
    {
    }

    bool Start(const std::shared_ptr<Shared>& self, Thread& owner);
    bool IsRunning();
    bool Wait(Limit limit);
    void Kill(uint32_t limitMilliseconds);
    void LetGo(uint32_t limitMilliseconds);

    const String name;

private:
    enum class State {
        Idle,     // no thread exists
        Started,  // not yet running
        Running,  // in Run()
        Ending,   // in OnFinished()
        Finished, // not yet joined
    };

    void Enter(Thread& owner, uint32_t number, const std::stop_token& stop);
    void RunGuarded(Thread& owner, const std::stop_token& stop) const noexcept;
    bool Step(uint32_t number, State next);
    void Reap() UTIL_REQUIRES(lock);
    bool IsAlive() const UTIL_REQUIRES(lock)
    {
        return state != State::Idle && state != State::Finished;
    }
    bool IsOwnThread() const UTIL_REQUIRES(lock)
    {
        return handle.get_id() == std::this_thread::get_id();
    }
    bool WaitForEnd(Limit limit) UTIL_REQUIRES(lock);
    void Abandon() UTIL_REQUIRES(lock);

    const ThreadPriority priority;
    const UsesCom usesCom;
    CriticalSection lock;
    std::condition_variable_any changed; // the state
    State state UTIL_GUARDED_BY(lock) = State::Idle;
    // Counts what was started or let go: a thread of another number is no longer this object's.
    uint32_t current UTIL_GUARDED_BY(lock) = 0;
    std::stop_source stopping UTIL_GUARDED_BY(lock){std::nostopstate};
    std::thread handle UTIL_GUARDED_BY(lock);
    ModuleReference module UTIL_GUARDED_BY(lock);
};

bool Thread::Shared::Start(const std::shared_ptr<Shared>& self, Thread& owner)
{
    // Twice, since somebody else may start it when the first wait is over.
    Wait(std::nullopt);
    Wait(std::nullopt);
    const CriticalSectionGuard guard(lock);
    Reap();
    if (state != State::Idle) {
        return false;
    }
    const uint32_t number = ++current;
    stopping = std::stop_source();
    try {
        handle = std::thread([self, &owner, number, stop = stopping.get_token()] {
            self->Enter(owner, number, stop);
        });
    } catch (const std::exception&) {
        return false;
    }
    state = State::Started;
    module.Take();
    return true;
}

void Thread::Shared::Enter(Thread& owner, uint32_t number, const std::stop_token& stop)
{
    Platform::PrioritiseThread(priority);
    Platform::NameThread(name);
    if (!Step(number, State::Running)) {
        return;
    }
    RunGuarded(owner, stop);
    if (Step(number, State::Ending)) {
        owner.OnFinished();
        Step(number, State::Finished);
    }
}

// An exception that left the thread's first function would end the host's process.
void Thread::Shared::RunGuarded(Thread& owner, const std::stop_token& stop) const noexcept
{
    try {
        const Platform::ComScope com(usesCom == UsesCom::Yes);
        owner.Run(stop);
    } catch (...) {
        DebugTrace(String("Thread \"%1\" failed").arg(name));
    }
}

// False when the thread was let go meanwhile: the object may be gone.
bool Thread::Shared::Step(uint32_t number, State next)
{
    const CriticalSectionGuard guard(lock);
    if (number != current) {
        return false;
    }
    state = next;
    changed.notify_all();
    return true;
}

// A finished thread needs the lock no more, so that joining it under the lock is safe.
void Thread::Shared::Reap()
{
    if (state == State::Finished && !IsOwnThread()) {
        handle.join();
        module.Release();
        state = State::Idle;
    }
}

bool Thread::Shared::IsRunning()
{
    const CriticalSectionGuard guard(lock);
    Reap();
    return IsAlive();
}

// False when the limit came first.
bool Thread::Shared::WaitForEnd(Limit limit)
{
    const uint32_t awaited = current;
    const auto deadline =
        std::chrono::steady_clock::now() + std::chrono::milliseconds(limit.value_or(0));
    while (current == awaited && IsAlive()) {
        if (!limit) {
            changed.wait(lock);
        } else if (changed.wait_until(lock, deadline) == std::cv_status::timeout) {
            return current != awaited || !IsAlive();
        }
    }
    return true;
}

bool Thread::Shared::Wait(Limit limit)
{
    const CriticalSectionGuard guard(lock);
    if (IsAlive() && (IsOwnThread() || !WaitForEnd(limit))) {
        return false;
    }
    Reap();
    return true;
}

void Thread::Shared::Abandon()
{
    ++current;
    handle.detach();
    state = State::Idle;
    std::exchange(module, {}); // never released: the thread is still at work in the module
    changed.notify_all();
}

void Thread::Shared::Kill(uint32_t limitMilliseconds)
{
    const CriticalSectionGuard guard(lock);
    stopping.request_stop();
    if (!IsOwnThread()) {
        if (!WaitForEnd(limitMilliseconds) && state == State::Ending) {
            WaitForEnd(std::nullopt); // it is inside the object
        }
        Reap();
    }
    if (state != State::Idle) {
        Abandon();
    }
}

void Thread::Shared::LetGo(uint32_t limitMilliseconds)
{
    const CriticalSectionGuard guard(lock);
    stopping.request_stop();
    if (!IsOwnThread()) {
        WaitForEnd(limitMilliseconds);
    }
    if (state != State::Idle) {
        Abandon();
    }
}

Thread::Thread(const String& name, ThreadPriority priority, UsesCom usesCom)
    : shared(std::make_shared<Shared>(name, priority, usesCom))
{
}

Thread::~Thread()
{
    Kill();
}

bool Thread::Start()
{
    return shared->Start(shared, *this);
}

bool Thread::IsRunning()
{
    return shared->IsRunning();
}

bool Thread::Wait(std::optional<uint32_t> limitMilliseconds)
{
    return shared->Wait(limitMilliseconds);
}

void Thread::Kill()
{
    shared->Kill(KillLimitMilliseconds);
}

void Thread::LetGo(uint32_t limitMilliseconds)
{
    shared->LetGo(limitMilliseconds);
}

const String& Thread::GetName() const noexcept
{
    return shared->name;
}

void Thread::Sleep(uint32_t milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

} // namespace Util
