// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/TaskQueue.h"
#include "frameworks/qobase/util/DebugTrace.h"

#include <gtest/gtest.h>

#include <pthread.h>

#include <atomic>
#include <future>
#include <memory>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

TEST(TaskQueue, RunsEverythingInOrderOnOneOtherThread)
{
    std::vector<int> order;
    std::set<std::thread::id> threads;
    Util::TaskQueue queue("Test Tasks", 1);
    EXPECT_FALSE(queue.RunsOnCaller());
    for (int i = 0; i < 500; ++i) {
        EXPECT_TRUE(queue.Post([&, i] {
            order.push_back(i);
            threads.insert(std::this_thread::get_id());
        }));
    }
    queue.WaitUntilIdle();
    ASSERT_EQ(order.size(), 500U);
    for (int i = 0; i < 500; ++i) {
        EXPECT_EQ(order[static_cast<std::size_t>(i)], i);
    }
    EXPECT_EQ(threads.size(), 1U);
    EXPECT_EQ(threads.count(std::this_thread::get_id()), 0U);
}

TEST(TaskQueue, TheDestructorFinishesWhatWasPosted)
{
    int done = 0;
    std::promise<void> gate;
    {
        Util::TaskQueue queue("Test Tasks", 1);
        EXPECT_TRUE(queue.Post([opened = gate.get_future().share()] { opened.wait(); }));
        for (int i = 0; i < 10; ++i) {
            EXPECT_TRUE(queue.Post([&done] { ++done; }));
        }
        EXPECT_EQ(done, 0); // all ten stand behind the gate
        gate.set_value();
    }
    EXPECT_EQ(done, 10);
}

TEST(TaskQueue, IsIdleOnlyWhenTheLastTaskHasReturned)
{
    Util::TaskQueue queue("Test Tasks", 1);
    for (int round = 0; round < 20; ++round) {
        std::promise<void> started;
        bool done = false;
        EXPECT_TRUE(queue.Post([&] {
            started.set_value();
            for (int i = 0; i < 1000; ++i) { // time enough for a wait that is too short to return
                std::this_thread::yield();
            }
            done = true;
        }));
        started.get_future().wait();
        queue.WaitUntilIdle();
        ASSERT_TRUE(done);
    }
}

TEST(TaskQueue, WhatATaskHoldsDiesBeforeTheQueueIsIdleAndMayPost)
{
    // The deleter would wait for ever if it ran under the queue's lock.
    Util::TaskQueue queue("Test Tasks", 1);
    int number = 0;
    std::atomic<bool> posted = false;
    std::shared_ptr<int> held(&number,
                              [&](int*) { EXPECT_TRUE(queue.Post([&posted] { posted = true; })); });
    EXPECT_TRUE(queue.Post([inTask = std::move(held)] { static_cast<void>(inTask); }));
    queue.WaitUntilIdle();
    EXPECT_TRUE(posted);
}

TEST(TaskQueue, AFailingTaskIsTracedAndTheNextOneRuns)
{
    std::vector<String> traced;
    Util::SetDebugTraceSink([&traced](const String& text) { traced.push_back(text); });
    for (const unsigned workers : {0U, 1U}) {
        Util::TaskQueue queue("Test Tasks", workers);
        EXPECT_EQ(queue.RunsOnCaller(), workers == 0);
        std::thread::id ranOn;
        EXPECT_TRUE(queue.Post([] { throw std::runtime_error("broken"); }));
        EXPECT_TRUE(queue.Post([&ranOn] { ranOn = std::this_thread::get_id(); }));
        if (workers != 0) {
            queue.WaitUntilIdle(); // without workers a task has run when Post() returns
        }
        EXPECT_NE(ranOn, std::thread::id());
        EXPECT_EQ(ranOn == std::this_thread::get_id(), workers == 0);
    }
    Util::SetDebugTraceSink(nullptr);
    EXPECT_EQ(traced.size(), 2U);
}

TEST(TaskQueue, APostForWhichNoWorkerCanBeMadeFailsAndLeavesNothingToWaitFor)
{
    pthread_attr_t usual;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    pthread_attr_t tooLarge = usual;
    ASSERT_EQ(pthread_attr_setstacksize(&tooLarge, std::size_t{1} << 48), 0); // no such room
    Util::TaskQueue queue("Test Tasks", 1);
    bool done = false;
    const auto post = [&] { return queue.Post([&done] { done = true; }); };
    ASSERT_EQ(pthread_setattr_default_np(&tooLarge), 0);
    const bool wasPosted = post();
    pthread_setattr_default_np(&usual);
    EXPECT_FALSE(wasPosted);
    queue.WaitUntilIdle();
    EXPECT_FALSE(done);
    EXPECT_TRUE(post());
    queue.WaitUntilIdle();
    EXPECT_TRUE(done);
}

} // namespace
