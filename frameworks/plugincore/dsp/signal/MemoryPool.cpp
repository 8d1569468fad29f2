// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/MemoryPool.h"

#include <cstdlib>
#include <functional>
#include <new>

namespace DSP {
namespace {

constexpr std::size_t Alignment = 16;
static_assert(alignof(std::max_align_t) <= Alignment);

// Both sides of the stack count the same rounded size, so that every block starts aligned.
constexpr std::size_t RoundUp(std::size_t bytes)
{
    return (bytes + Alignment - 1) / Alignment * Alignment;
}

} // namespace

MemoryPool::MemoryPool(const String& name)
    : lock(String("%1 Critical Section").arg(name))
{
}

void MemoryPool::Reserve(std::size_t bytes)
{
    const Util::CriticalSectionGuard guard(lock);
    const std::size_t wanted = RoundUp(bytes);
    if (wanted > size && used == 0) {
        memory.resize((wanted + sizeof(std::max_align_t) - 1) / sizeof(std::max_align_t));
        size = wanted;
    }
}

void MemoryPool::ForgetOverrun() noexcept
{
    if (used > size) {
        used = 0;
    }
}

bool MemoryPool::Holds(const void* block) const noexcept
{
    const auto* begin = reinterpret_cast<const std::byte*>(memory.data());
    const auto* at = static_cast<const std::byte*>(block);
    const std::less<> before;
    return !before(at, begin) && before(at, begin + size);
}

void* MemoryPool::Allocate(std::size_t bytes)
{
    const Util::CriticalSectionGuard guard(lock);
    const std::size_t taken = RoundUp(bytes);
    ForgetOverrun();
    if (taken > size - used) {
        if (void* block = std::malloc(taken != 0 ? taken : Alignment)) {
            return block;
        }
        throw std::bad_alloc();
    }
    auto* block = reinterpret_cast<std::byte*>(memory.data()) + used;
    used += taken;
    return block;
}

void MemoryPool::Free(void* block, std::size_t bytes)
{
    const Util::CriticalSectionGuard guard(lock);
    const std::size_t taken = RoundUp(bytes);
    if (used > size) {
        used = 0;
        return;
    }
    // Only a block from the heap can be larger than all that is in use. It stays allocated: the
    // price of distinguishing the two by the mark alone.
    if (taken > used) {
        return;
    }
    if (Holds(block)) {
        used -= taken;
    } else {
        std::free(block);
    }
}

void MemoryPool::SetMark(std::size_t mark)
{
    if (GetMark() == mark) {
        return;
    }
    const Util::CriticalSectionGuard guard(lock);
    used = used > size ? 0 : mark;
}

} // namespace DSP
