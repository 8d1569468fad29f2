// SPDX-License-Identifier: ISC
#include "wrappers/clap/GestureQueue.h"

#include <gtest/gtest.h>

#include <thread>

using Clap::Gesture;
using Clap::GestureQueue;

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
