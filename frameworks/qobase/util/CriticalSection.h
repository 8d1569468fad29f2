// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"
#include "frameworks/qobase/util/ThreadAnnotations.h"

#include <mutex>

namespace Util {

/// A named recursive lock: its owner may enter again and leaves as often as it entered. The name is
/// for diagnostics. Nothing is allocated after construction.
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
    void Enter() UTIL_ACQUIRE() { mutex.lock(); }
    /// Answers at once: true when this thread owns the section now. [any]
    [[nodiscard]] bool TryEnter() noexcept UTIL_TRY_ACQUIRE(true) { return mutex.try_lock(); }
    /// One for each Enter() and each successful TryEnter(), on the same thread. [any]
    void Leave() noexcept UTIL_RELEASE() { mutex.unlock(); }

    void lock() UTIL_ACQUIRE() { mutex.lock(); }
    [[nodiscard]] bool try_lock() noexcept UTIL_TRY_ACQUIRE(true) { return mutex.try_lock(); }
    void unlock() noexcept UTIL_RELEASE() { mutex.unlock(); }

    [[nodiscard]] const String& GetName() const noexcept { return name; }

private:
    String name;
    // The standard's own lock, and not a hand-made one, so that thread checkers see every use.
    std::recursive_mutex mutex;
};

/// Owns a critical section from here to the end of the scope.
class UTIL_SCOPED_CAPABILITY CriticalSectionGuard {
public:
    explicit CriticalSectionGuard(CriticalSection& newSection) UTIL_ACQUIRE(newSection)
        : section(newSection)
    {
        section.Enter();
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
