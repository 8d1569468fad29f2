// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/elements/DSPCommandFifo.h"

namespace DSP {

DSPCommandFifo::DSPCommandFifo(const String& name, Growing growth, uint32_t capacity)
    : growing(growth == Growing::Yes)
    , readLock(String("%1 Read Lock").arg(name))
    , writeLock(String("%1 Write Lock").arg(name))
    , slots(capacity, nullptr)
{
}

bool DSPCommandFifo::Push(DSPCommand* command)
{
    const Util::CriticalSectionGuard guard(writeLock);
    for (;;) {
        const auto size = static_cast<uint32_t>(slots.size());
        const uint32_t write = writeIndex.load(std::memory_order_relaxed);
        const uint32_t next = write + 1 == size ? 0 : write + 1;
        // Pairs with the exchange in Pop(): that slot has been read before it is written again.
        if (next != readIndex.load(std::memory_order_acquire)) {
            slots[write] = command;
            unread.fetch_add(1, std::memory_order_relaxed);
            writeIndex.store(next, std::memory_order_release);
            return true;
        }
        if (!growing) {
            return false;
        }
        Grow();
    }
}

void DSPCommandFifo::Grow()
{
    const auto oldSize = static_cast<uint32_t>(slots.size());
    std::vector<DSPCommand*> larger(std::size_t{2} * oldSize, nullptr);
    const Util::CriticalSectionGuard guard(readLock);
    // A reader may have taken some since the ring was seen full, so the unread ones are counted.
    uint32_t read = readIndex.load(std::memory_order_relaxed);
    const uint32_t write = writeIndex.load(std::memory_order_relaxed);
    uint32_t count = 0;
    while (read != write) {
        larger[count++] = slots[read];
        read = read + 1 == oldSize ? 0 : read + 1;
    }
    slots.swap(larger);
    readIndex.store(0, std::memory_order_relaxed);
    writeIndex.store(count, std::memory_order_relaxed);
}

DSPCommand* DSPCommandFifo::Pop()
{
    // Decides only whether to look; what there is, the indices say. The count rises before the
    // index does and falls after it, so that no command is missed whose push has returned before,
    // in the order that any lock or atomic sets up between the two threads; one that is just being
    // pushed waits for the next look.
    if (unread.load(std::memory_order_relaxed) == 0) {
        return nullptr;
    }
    const Util::CriticalSectionGuard guard(readLock);
    const uint32_t read = readIndex.load(std::memory_order_relaxed);
    // Pairs with the store in Push(): the slot's pointer is seen with the index.
    if (read == writeIndex.load(std::memory_order_acquire)) {
        return nullptr;
    }
    DSPCommand* command = slots[read];
    const auto size = static_cast<uint32_t>(slots.size());
    readIndex.store(read + 1 == size ? 0 : read + 1, std::memory_order_release);
    unread.fetch_sub(1, std::memory_order_relaxed);
    return command;
}

} // namespace DSP
