// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/CriticalSection.h"

#include <atomic>
#include <cassert>
#include <thread>

/// Keeps this thread's id in a mark, from here to the end of the scope; then what stood there
/// before holds again.
///
/// Scopes of one mark may only nest, never overlap: of two threads, the one that ends last would
/// leave the id of the other behind, which is no longer there. So whoever makes one holds the
/// processing lock of the instance, and keeps it to the end of the scope. Everybody may read the
/// mark. [process]
class ThreadMark {
public:
    ThreadMark(std::atomic<std::thread::id>& newMark, const Util::CriticalSection& processLock)
        : mark(newMark)
        , former(mark.exchange(std::this_thread::get_id()))
    {
        assert(processLock.IsOwnedByCaller());
        static_cast<void>(processLock); // where there are no assertions
    }
    ThreadMark(const ThreadMark&) = delete;
    ThreadMark& operator=(const ThreadMark&) = delete;
    ~ThreadMark() { mark.store(former); }

private:
    std::atomic<std::thread::id>& mark;
    const std::thread::id former;
};
