// SPDX-License-Identifier: ISC
#include "wrappers/clap/GestureQueue.h"

#include <gtest/gtest.h>

#include <thread>

using Clap::Gesture;
using Clap::GestureQueue;

TEST(GestureQueueTest, KeepsTheOrderThroughManyRoundsAndRefusesWhatDoesNotFit)
{
    GestureQueue queue;
    uint32_t pushed = 0;
    uint32_t popped = 0;
    for (const size_t count : {size_t{1}, size_t{700}, GestureQueue::Capacity, size_t{3}}) {
        for (size_t i = 0; i < count; ++i) {
            ASSERT_TRUE(queue.Push({Gesture::Kind::Change, pushed}));
            ++pushed;
        }
        if (count == GestureQueue::Capacity) {
            EXPECT_FALSE(queue.Push({}));
        }
        while (const auto gesture = queue.Peek()) {
            EXPECT_EQ(gesture->parameter, popped);
            queue.Pop();
            ++popped;
        }
        EXPECT_EQ(popped, pushed);
    }
}

TEST(GestureQueueTest, LosesNothingOfSeveralThreadsThatItHasTaken)
{
    constexpr uint32_t producers = 3;
    constexpr uint32_t each = 20000;
    GestureQueue queue;
    std::vector<std::thread> threads;
    for (uint32_t number = 0; number < producers; ++number) {
        threads.emplace_back([&queue, number] {
            for (uint32_t i = 0; i < each;) {
                if (queue.Push({Gesture::Kind::Change, i * producers + number})) {
                    ++i;
                } else {
                    std::this_thread::yield();
                }
            }
        });
    }
    uint32_t next[producers] = {};
    for (uint32_t count = 0; count < producers * each;) {
        if (const auto gesture = queue.Peek()) {
            const uint32_t number = gesture->parameter % producers;
            EXPECT_EQ(gesture->parameter / producers, next[number]++);
            queue.Pop();
            ++count;
        } else {
            std::this_thread::yield();
        }
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_FALSE(queue.Peek().has_value());
}
