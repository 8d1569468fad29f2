// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"
#include "frameworks/qobase/util/ThreadAnnotations.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <thread>

namespace Util {

/// A named recursive lock: its owner may enter again, which costs it no more than a look at who the
/// owner is, and leaves as often as it entered. The name is for diagnostics. Nothing is allocated
/// after construction.
///
/// Also a standard lockable, for std::scoped_lock and its kin. Threads: [any]; the processing side
/// uses TryEnter() unless the lock is one of the few that it may wait for.
class UTIL_CAPABILITY("mutex") CriticalSection {
public:
    explicit CriticalSection(String newName);
    CriticalSection(const CriticalSection&) = delete;
    CriticalSection(CriticalSection&&) = delete;
    CriticalSection& operator=(const CriticalSection&) = delete;
    CriticalSection& operator=(CriticalSection&&) = delete;
    ~CriticalSection() = default;

    /// Waits until this thread owns the section. [any, locks]
    void Enter() UTIL_ACQUIRE()
    {
        if (!IsOwnedByCaller()) {
            mutex.lock();
            owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
        }
        ++depth;
    }
    /// Answers at once: true when this thread owns the section now. [any]
    [[nodiscard]] bool TryEnter() noexcept UTIL_TRY_ACQUIRE(true)
    {
        if (!IsOwnedByCaller()) {
            if (!mutex.try_lock()) {
                return false;
            }
            owner.store(std::this_thread::get_id(), std::memory_order_relaxed);
        }
        ++depth;
        return true;
    }
    /// One for each Enter() and each successful TryEnter(), on the same thread. [any]
    void Leave() noexcept UTIL_RELEASE()
    {
        if (--depth == 0) {
            owner.store(std::thread::id(), std::memory_order_relaxed);
            mutex.unlock();
        }
    }

    void lock() UTIL_ACQUIRE() { Enter(); }
    [[nodiscard]] bool try_lock() noexcept UTIL_TRY_ACQUIRE(true) { return TryEnter(); }
    void unlock() noexcept UTIL_RELEASE() { Leave(); }

    [[nodiscard]] const String& GetName() const noexcept { return name; }

    /// Whether the calling thread has entered and not yet left; for assertions. [any]
    [[nodiscard]] bool IsOwnedByCaller() const noexcept
    {
        // Only a thread itself writes its own id, and takes it out again before it unlocks:
        // whatever another thread's store looks like from here, the answer is right.
        return owner.load(std::memory_order_relaxed) == std::this_thread::get_id();
    }

private:
    String name;
    // The standard's own lock, and not a hand-made one, so that thread checkers see it. Its owner
    // never locks it twice; the kind tells the checks of the audio side a named lock from a plain
    // one.
    std::recursive_mutex mutex;
    std::atomic<std::thread::id> owner{}; // default: none
    uint32_t depth = 0;                   // entries of the owner; guarded by mutex
};

/// Owns a critical section from here to the end of the scope.
class UTIL_SCOPED_CAPABILITY CriticalSectionGuard {
public:
    explicit CriticalSectionGuard(CriticalSection& newSection) UTIL_ACQUIRE(newSection)
        : section(newSection)
    {
        section.Enter();
    }
    /// Takes over an entry of the caller's, as by TryEnter().
    CriticalSectionGuard(CriticalSection& newSection, std::adopt_lock_t /*entered*/)
        UTIL_REQUIRES(newSection)
        : section(newSection)
    {
    }
    CriticalSectionGuard(const CriticalSectionGuard&) = delete;
    CriticalSectionGuard(CriticalSectionGuard&&) = delete;
    CriticalSectionGuard& operator=(const CriticalSectionGuard&) = delete;
    CriticalSectionGuard& operator=(CriticalSectionGuard&&) = delete;
    ~CriticalSectionGuard() UTIL_RELEASE() { section.Leave(); }

private:
    CriticalSection& section;
};

} // namespace Util
