// SPDX-License-Identifier: ISC
#pragma once

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

namespace Util {

/// Work done on one worker thread, in the order of posting. The thread starts with the first post.
/// Threads: [any], but not on the processing side, since posting allocates and locks.
class TaskQueue {
public:
    using Task = std::function<void()>;

    /// `workers` 0: no thread is made and posted work runs at once on the caller. Any other number
    /// means one worker.
    explicit TaskQueue(unsigned workers);
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue(TaskQueue&&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;
    TaskQueue& operator=(TaskQueue&&) = delete;
    /// Finishes all posted work first. Not from within a task.
    virtual ~TaskQueue();

    /// Takes `task` over. A task may post more; what it throws is traced and dropped.
    void Post(Task task);
    /// Returns when all work posted so far, and what it posted, is done. Not from within a task.
    void WaitUntilIdle();
    /// True when posted work runs at once on the caller.
    [[nodiscard]] bool RunsOnCaller() const noexcept { return runsOnCaller; }

private:
    void Run();

    const bool runsOnCaller;
    std::mutex mutex; // guards everything below
    std::condition_variable posted;
    std::condition_variable idle;
    std::deque<Task> tasks;
    bool busy = false;
    bool ending = false;
    std::thread worker;
};

} // namespace Util
