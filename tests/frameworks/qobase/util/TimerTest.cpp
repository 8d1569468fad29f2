// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Timer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <future>
#include <mutex>
#include <optional>
#include <thread>

namespace {

constexpr uint32_t Period = 1; // ms; tests wait for counts, never for times

/// Counts, and lets a test wait until a count is reached.
class Counter {
public:
    void Add()
    {
        {
            const std::scoped_lock lock(mutex);
            ++count;
        }
        changed.notify_all();
    }
    void WaitFor(int wanted)
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return count >= wanted; });
    }
    int Get()
    {
        const std::scoped_lock lock(mutex);
        return count;
    }

private:
    std::mutex mutex;
    std::condition_variable changed;
    int count = 0;
};

std::atomic<bool> firstThreadEnded = false;

/// Sets the flag when the thread that it is called on has ended.
void MarkThread()
{
    thread_local const std::shared_ptr<void> End(nullptr, [](void*) { firstThreadEnded = true; });
    static_cast<void>(End);
}

TEST(PeriodicTimer, AllTimersShareOneThreadAndItEndsWithTheLast)
{
    firstThreadEnded = false;
    Counter firstTicks;
    Counter secondTicks;
    std::thread::id firstThread;
    std::thread::id secondThread;
    auto first = std::make_unique<Util::PeriodicTimer>(Period, [&] {
        MarkThread();
        firstThread = std::this_thread::get_id();
        firstTicks.Add();
    });
    auto second = std::make_unique<Util::PeriodicTimer>(Period, [&] {
        secondThread = std::this_thread::get_id();
        secondTicks.Add();
    });
    firstTicks.WaitFor(1);
    secondTicks.WaitFor(1);
    first.reset();
    EXPECT_FALSE(firstThreadEnded);
    secondTicks.WaitFor(secondTicks.Get() + 2);
    second.reset();
    EXPECT_TRUE(firstThreadEnded);
    EXPECT_EQ(firstThread, secondThread);
    EXPECT_NE(firstThread, std::this_thread::get_id());
}

TEST(PeriodicTimer, TheDestructorWaitsForItsRunningCallback)
{
    const Util::PeriodicTimer keepsTheThread(1000, [] {}); // else its end would be waited for
    for (int round = 0; round < 20; ++round) {
        std::promise<void> entered;
        std::atomic<int> calls = 0;
        std::atomic<int> finished = 0;
        std::optional<Util::PeriodicTimer> timer;
        timer.emplace(Period, [&] {
            if (++calls == 1) {
                entered.set_value();
            }
            for (int i = 0; i < 1000; ++i) { // time enough for a destructor that doesn't wait
                std::this_thread::yield();
            }
            ++finished;
        });
        entered.get_future().wait();
        timer.reset();
        ASSERT_EQ(finished, calls);
    }
}

TEST(PeriodicTimer, ABusyTimerDoesNotHoldUpTheEndOfAnother)
{
    std::promise<void> entered;
    std::promise<void> gate;
    std::atomic<bool> first = true;
    const Util::PeriodicTimer busy(Period, [&, opened = gate.get_future().share()] {
        if (first.exchange(false)) {
            entered.set_value();
        }
        opened.wait();
    });
    entered.get_future().wait();
    {
        const Util::PeriodicTimer other(Period, [] {});
    } // would never return when it waited for the callback of the busy one
    gate.set_value();
}

TEST(PeriodicTimer, MayEndWithinItsOwnCallbackAndANewOneStartsThereOrElsewhere)
{
    for (int round = 0; round < 20; ++round) {
        Counter done;
        std::unique_ptr<Util::PeriodicTimer> timer;
        std::unique_ptr<Util::PeriodicTimer> successor;
        std::mutex ready; // held until `timer` is assigned
        std::unique_lock hold(ready);
        timer = std::make_unique<Util::PeriodicTimer>(Period, [&, startsThere = round % 4 == 0] {
            {
                const std::scoped_lock wait(ready);
            }
            auto& made = successor;
            auto& counter = done;
            const bool starts = startsThere;
            timer.reset(); // the captures of this callback live on until it returns
            if (starts) {
                made = std::make_unique<Util::PeriodicTimer>(Period, [&counter] { counter.Add(); });
            } else {
                counter.Add();
            }
        });
        hold.unlock();
        done.WaitFor(1);
        Counter ticks;
        const Util::PeriodicTimer next(Period, [&ticks] { ticks.Add(); });
        ticks.WaitFor(1);
    }
}

TEST(PeriodicTimer, AFailingCallbackIsCalledAgain)
{
    Counter ticks;
    const Util::PeriodicTimer timer(Period, [&ticks] {
        ticks.Add();
        throw 1;
    });
    ticks.WaitFor(3);
}

} // namespace
