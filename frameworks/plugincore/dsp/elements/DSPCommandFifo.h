// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/elements/DSPCommand.h"
#include "frameworks/qobase/util/CriticalSection.h"

#include <atomic>
#include <cstdint>
#include <vector>

namespace DSP {

/// Bounded ring of command pointers between the two sides of an element; owns nothing.
///
/// A push and a pop may run at once. The locks serialise writers against writers and readers
/// against readers; a writer that has to grow the ring holds both for the time of one copy. That
/// the ring is empty is seen without a lock.
class DSPCommandFifo {
public:
    enum class Growing { No, Yes };

    /// `capacity` slots hold capacity - 1 commands. [setup]
    DSPCommandFifo(const String& name, Growing growth, uint32_t capacity = 512);

    /// False when the ring is full and may not grow. [process, locks] when it doesn't grow
    bool Push(DSPCommand* command);

    /// Null when the ring is empty. [process, locks] when it isn't
    DSPCommand* Pop();

    uint32_t GetCapacity() const noexcept { return static_cast<uint32_t>(slots.size()); }

private:
    void Grow();

    const bool growing;
    Util::CriticalSection readLock;
    Util::CriticalSection writeLock;
    std::vector<DSPCommand*> slots;
    std::atomic<uint32_t> readIndex{0}; // equal indices mean empty
    std::atomic<uint32_t> writeIndex{0};
    std::atomic<uint32_t> unread{0}; // at least as many as there are between the indices
};

} // namespace DSP
