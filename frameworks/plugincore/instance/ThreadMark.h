// SPDX-License-Identifier: ISC
#pragma once

#include <atomic>
#include <thread>

/// Keeps this thread's id in a mark, from here to the end of the scope; then what stood there
/// before holds again. [any]
class ThreadMark {
public:
    explicit ThreadMark(std::atomic<std::thread::id>& newMark)
        : mark(newMark)
        , former(mark.exchange(std::this_thread::get_id()))
    {
    }
    ThreadMark(const ThreadMark&) = delete;
    ThreadMark& operator=(const ThreadMark&) = delete;
    ~ThreadMark() { mark.store(former); }

private:
    std::atomic<std::thread::id>& mark;
    const std::thread::id former;
};
