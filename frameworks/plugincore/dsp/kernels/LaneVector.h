// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <new>
#include <vector>

namespace DSP::Kernels {

/// Memory that begins where a cache line does, so that no vector straddles two of them.
template <typename T>
struct LaneAllocator {
    using value_type = T;
    static constexpr std::align_val_t Alignment{64};

    LaneAllocator() = default;
    /// As containers convert allocators.
    template <typename Other>
    // NOLINTNEXTLINE(google-explicit-constructor): containers convert without a word
    LaneAllocator(const LaneAllocator<Other>& /*other*/) noexcept
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

    bool operator==(const LaneAllocator& /*other*/) const noexcept { return true; }
};

/// Floats for kernels that go through them from the start on.
using LaneVector = std::vector<float, LaneAllocator<float>>;

} // namespace DSP::Kernels
