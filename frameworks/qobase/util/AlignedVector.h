// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace Util {

/// Gives memory that starts at a line of the processor's cache, so that no vector load within it
/// touches two lines where one would do.
template <typename T>
struct CacheLineAllocator {
    using value_type = T;

    static constexpr std::align_val_t Alignment{64}; ///< bytes

    CacheLineAllocator() = default;
    template <typename Other>
    explicit(false) CacheLineAllocator(const CacheLineAllocator<Other>& /*other*/) noexcept
    {
    }

    T* allocate(std::size_t count)
    {
        return static_cast<T*>(::operator new(count * sizeof(T), Alignment));
    }
    void deallocate(T* memory, std::size_t /*count*/) noexcept
    {
        ::operator delete(memory, Alignment);
    }

    friend bool operator==(const CacheLineAllocator& /*a*/,
                           const CacheLineAllocator& /*b*/) noexcept
    {
        return true;
    }
};

/// A std::vector whose first element lies at the start of a cache line.
template <typename T>
using AlignedVector = std::vector<T, CacheLineAllocator<T>>;

} // namespace Util
