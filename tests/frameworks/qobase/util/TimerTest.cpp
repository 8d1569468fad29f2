// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Timer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <mutex>
#include <optional>
#include <thread>

namespace {

constexpr uint32_t Period = 1; // ms; tests wait for counts, never for times

using Counter = std::atomic<int>;

void WaitFor(const Counter& counter, int wanted)
{
    while (counter < wanted) {
        std::this_thread::yield();
    }
}

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
    Counter firstTicks = 0;
    Counter secondTicks = 0;
    std::thread::id firstThread;
    std::thread::id secondThread;
    auto first = std::make_unique<Util::PeriodicTimer>(Period, [&] {
        MarkThread();
        firstThread = std::this_thread::get_id();
        ++firstTicks;
    });
    auto second = std::make_unique<Util::PeriodicTimer>(Period, [&] {
        secondThread = std::this_thread::get_id();
        ++secondTicks;
    });
    WaitFor(firstTicks, 1);
    WaitFor(secondTicks, 1);
    first.reset();
    EXPECT_FALSE(firstThreadEnded);
    WaitFor(secondTicks, secondTicks + 2);
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
        Counter done = 0;
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
                made = std::make_unique<Util::PeriodicTimer>(Period, [&counter] { ++counter; });
            } else {
                ++counter;
            }
        });
        hold.unlock();
        WaitFor(done, 1);
        Counter ticks = 0;
        const Util::PeriodicTimer next(Period, [&ticks] { ++ticks; });
        WaitFor(ticks, 1);
    }
}

TEST(PeriodicTimer, AFailingCallbackIsCalledAgain)
{
    Counter ticks = 0;
    const Util::PeriodicTimer timer(Period, [&ticks] {
        ++ticks;
        throw 1;
    });
    WaitFor(ticks, 3);
}

} // namespace
