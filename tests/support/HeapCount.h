// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace Support {

/// Counts the heap allocations that this thread makes by `new` while the object lives. The program
/// must be built with HeapCount.cpp, which replaces the global operators.
class HeapCount {
public:
    HeapCount() noexcept;
    HeapCount(const HeapCount&) = delete;
    HeapCount& operator=(const HeapCount&) = delete;
    ~HeapCount() = default;

    std::size_t GetCount() const noexcept;

private:
    std::size_t before;
};

} // namespace Support
