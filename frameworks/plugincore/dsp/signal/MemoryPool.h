// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/CriticalSection.h"

#include <cstddef>
#include <vector>

namespace DSP {

/// Memory released in stack order: taking from it moves one mark. What doesn't fit comes from the
/// heap. Takes its lock for each operation. [process, locks] but for Reserve().
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

    std::size_t GetMark();
    void SetMark(std::size_t mark);

private:
    bool Holds(const void* block) const noexcept;
    void ForgetOverrun() noexcept;

    Util::CriticalSection lock;
    std::vector<std::max_align_t> memory;
    std::size_t size = 0; // bytes
    std::size_t used = 0; // bytes
};

} // namespace DSP
