// SPDX-License-Identifier: ISC
#include "tests/support/HeapCount.h"

#include <cstdlib>
#include <new>

namespace {

thread_local std::size_t allocations = 0;

void* Allocate(std::size_t size)
{
    ++allocations;
    if (void* const block = std::malloc(size == 0 ? 1 : size)) {
        return block;
    }
    throw std::bad_alloc();
}

} // namespace

void* operator new(std::size_t size)
{
    return Allocate(size);
}

void* operator new[](std::size_t size)
{
    return Allocate(size);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    ++allocations;
    const auto step = static_cast<std::size_t>(alignment);
    if (void* const block = std::aligned_alloc(step, (size + step) / step * step)) {
        return block;
    }
    throw std::bad_alloc();
}

void operator delete(void* block, std::align_val_t /*alignment*/) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/, std::align_val_t /*alignment*/) noexcept
{
    std::free(block);
}

void operator delete(void* block) noexcept
{
    std::free(block);
}

void operator delete[](void* block) noexcept
{
    std::free(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept
{
    std::free(block);
}

namespace Support {

HeapCount::HeapCount() noexcept
    : before(allocations)
{
}

std::size_t HeapCount::GetCount() const noexcept
{
    return allocations - before;
}

} // namespace Support
