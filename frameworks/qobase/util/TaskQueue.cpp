// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/TaskQueue.h"

#include "frameworks/qobase/util/DebugTrace.h"

#include <utility>

namespace Util {
namespace {

/// One task that fails is no reason to leave out the next.
void RunGuarded(const TaskQueue::Task& task) noexcept
{
    try {
        task();
    } catch (...) {
        DebugTrace("A task of the task queue failed");
    }
}

} // namespace

TaskQueue::TaskQueue(const String& name, unsigned workers)
    : runsOnCaller(workers == 0)
    , lock(String("%1 Critical Section").arg(name))
    , worker(name, *this)
{
}

TaskQueue::~TaskQueue()
{
    {
        const CriticalSectionGuard guard(lock);
        ending = true;
    }
    changed.notify_all();
    worker.Wait();
}

bool TaskQueue::Post(Task task)
{
    if (runsOnCaller) {
        RunGuarded(task);
        return true;
    }
    const CriticalSectionGuard guard(lock);
    hasWorker = hasWorker || worker.Start();
    if (!hasWorker) {
        return false;
    }
    tasks.push_back(std::move(task));
    changed.notify_all();
    return true;
}

void TaskQueue::WaitUntilIdle()
{
    const CriticalSectionGuard guard(lock);
    while (busy || !tasks.empty()) {
        changed.wait(lock);
    }
}

void TaskQueue::Worker::Run(const std::stop_token& /*stop*/)
{
    queue.RunTasks(); // ends when the queue does
}

void TaskQueue::RunTasks()
{
    for (;;) {
        Task task;
        {
            const CriticalSectionGuard guard(lock);
            busy = false;
            changed.notify_all();
            while (tasks.empty() && !ending) {
                changed.wait(lock);
            }
            if (tasks.empty()) {
                return;
            }
            task = std::move(tasks.front());
            tasks.pop_front();
            busy = true;
        }
        RunGuarded(task);
        // What the task captured dies here, before it counts as done and outside the lock.
    }
}

} // namespace Util
