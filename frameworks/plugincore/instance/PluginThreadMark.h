// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/Plugin.h"

/// Says that this thread is inside the process side, from here to the end of the scope; then what
/// was said before holds again.
class Plugin::ThreadMark {
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
