// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/Thread.h"

#include <condition_variable>
#include <deque>
#include <functional>

namespace Util {

/// Work done on one worker thread, in the order of posting. The thread starts with the first post.
/// Threads: [any], but not on the processing side, since posting allocates and locks.
class TaskQueue {
public:
    using Task = std::function<void()>;

    /// `workers` 0: no thread is made and posted work runs at once on the caller. Any other number
    /// means one worker, a thread of this name.
    TaskQueue(const String& name, unsigned workers);
    TaskQueue(const TaskQueue&) = delete;
    TaskQueue(TaskQueue&&) = delete;
    TaskQueue& operator=(const TaskQueue&) = delete;
    TaskQueue& operator=(TaskQueue&&) = delete;
    /// Finishes all posted work first. Not from within a task.
    virtual ~TaskQueue();

    /// Takes `task` over. A task may post more; what it throws is traced and dropped. False, and
    /// the task is gone without having run, when there is no worker and none can be made; the next
    /// post tries again.
    [[nodiscard]] bool Post(Task task);
    /// Returns when all work posted so far, and what it posted, is done. Not from within a task.
    void WaitUntilIdle();
    /// True when posted work runs at once on the caller.
    [[nodiscard]] bool RunsOnCaller() const noexcept { return runsOnCaller; }

private:
    class Worker final : public Thread {
    public:
        Worker(const String& name, TaskQueue& newQueue)
            : Thread(name, ThreadPriority::Normal)
            , queue(newQueue)
        {
        }

    protected:
        void Run(const std::stop_token& stop) override;

    private:
        TaskQueue& queue;
    };

    void RunTasks();

    const bool runsOnCaller;
    CriticalSection lock; // may start the worker, whose own lock comes after it
    std::condition_variable_any changed;
    std::deque<Task> tasks UTIL_GUARDED_BY(lock);
    bool hasWorker UTIL_GUARDED_BY(lock) = false;
    bool busy UTIL_GUARDED_BY(lock) = false;
    bool ending UTIL_GUARDED_BY(lock) = false;
    Worker worker;
};

} // namespace Util
