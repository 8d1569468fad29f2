// SPDX-License-Identifier: ISC
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Sees what the calling thread does that the processing side must not: the test program stands in
/// for the C library's heap and lock functions, so that every library in the process calls it
/// first, and asks the kernel to report system calls.
namespace Probe {

/// One thread's doings during a watch. A record of fixed size, since the watched thread writes it.
struct Report {
    static constexpr std::size_t MaxLocks = 64;

    uint32_t heapCalls = 0;   ///< allocations, releases and changes of size
    uint32_t waits = 0;       ///< operations on condition variables and reader-writer locks
    uint32_t lockCalls = 0;   ///< locks taken or tried
    uint32_t systemCalls = 0; ///< at most 1: the watch for them ends with the first
    long systemCall = -1;     ///< its number
    /// The different locks, in the order of their first use; those past the end are not kept.
    std::array<const void*, MaxLocks> locks{};
    std::size_t lockCount = 0;
};

/// True where the kernel can report system calls of a single thread.
bool CanSeeSystemCalls();

/// Watches the calling thread until Stop() or the end of the scope; one at a time per thread.
/// Waiting for a lock is counted as taking it, not as a system call.
class Watch {
public:
    Watch();
    Watch(const Watch&) = delete;
    Watch(Watch&&) = delete;
    Watch& operator=(const Watch&) = delete;
    Watch& operator=(Watch&&) = delete;
    ~Watch();

    const Report& Stop();

private:
    Report report;
};

} // namespace Probe
