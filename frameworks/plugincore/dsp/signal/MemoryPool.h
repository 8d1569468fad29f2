// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/CriticalSection.h"

#include <atomic>
#include <cstddef>
#include <vector>

namespace DSP {

/// Memory released in stack order: taking from it moves one mark. What doesn't fit comes from the
/// heap. Takes its lock for each operation that changes something. [process, locks] but for
/// Reserve().
class MemoryPool {
public:
    explicit MemoryPool(const String& name);

    /// Grows the pool, zero-filled, to at least this size; it never shrinks. Blocks that are taken
    /// would lose their memory, so a call while some are is put off until the next one. [setup]
    void Reserve(std::size_t bytes);

    /// A block aligned for any plain type.
    void* Allocate(std::size_t bytes);

    /// Gives back a block of the same size as it was taken.
    void Free(void* block, std::size_t bytes);

    /// Bytes in use. [process]
    std::size_t GetMark() const noexcept { return used.load(std::memory_order_relaxed); }
    /// Frees what was taken since the mark; without the lock when that is nothing.
    void SetMark(std::size_t mark);

private:
    bool Holds(const void* block) const noexcept UTIL_REQUIRES(lock);
    void ForgetOverrun() noexcept UTIL_REQUIRES(lock);

    Util::CriticalSection lock;
    std::vector<std::max_align_t> memory UTIL_GUARDED_BY(lock);
    std::size_t size UTIL_GUARDED_BY(lock) = 0; // bytes
    // Bytes. Written under the lock. A mark is read without: it is of use only to who takes from
    // the pool alone between the two calls, and that one sees its own writes.
    std::atomic<std::size_t> used{0};
};

} // namespace DSP
