// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/TaskQueue.h"

#include "frameworks/qobase/util/DebugTrace.h"

#include <utility>

namespace Util {
namespace {

/// An exception that left a thread's first function would end the host's process.
void RunGuarded(const TaskQueue::Task& task) noexcept
{
    try {
        task();
    } catch (...) {
        DebugTrace("A task of the task queue failed");
    }
}

} // namespace

TaskQueue::TaskQueue(unsigned workers)
    : runsOnCaller(workers == 0)
{
}

TaskQueue::~TaskQueue()
{
    {
        const std::lock_guard lock(mutex);
        ending = true;
    }
    posted.notify_all();
    if (worker.joinable()) {
        worker.join();
    }
}

void TaskQueue::Post(Task task)
{
    if (runsOnCaller) {
        RunGuarded(task);
        return;
    }
    {
        const std::lock_guard lock(mutex);
        tasks.push_back(std::move(task));
        if (!worker.joinable()) {
            worker = std::thread([this] { Run(); });
        }
    }
    posted.notify_one();
}

void TaskQueue::WaitUntilIdle()
{
    std::unique_lock lock(mutex);
    idle.wait(lock, [this] { return tasks.empty() && !busy; });
}

void TaskQueue::Run()
{
    std::unique_lock lock(mutex);
    for (;;) {
        posted.wait(lock, [this] { return ending || !tasks.empty(); });
        if (tasks.empty()) {
            return;
        }
        Task task = std::move(tasks.front());
        tasks.pop_front();
        busy = true;
        lock.unlock();
        RunGuarded(task);
        task = nullptr; // what the task captured dies here, before it counts as done
        lock.lock();
        busy = false;
        if (tasks.empty()) {
            idle.notify_all();
        }
    }
}

} // namespace Util
