// SPDX-License-Identifier: ISC
#include "wrappers/clap/GestureQueue.h"

#include <gtest/gtest.h>

#include <thread>

using Clap::Gesture;
using Clap::GestureQueue;

TEST(GestureQueueTest, LosesNothingOfSeveralThreadsThatItHasTaken)
{
    constexpr uint32_t Producers = 3;
    constexpr uint32_t Each = 20000;
    GestureQueue queue;
    std::vector<std::thread> threads;
    for (uint32_t number = 0; number < Producers; ++number) {
        threads.emplace_back([&queue, number] {
            for (uint32_t i = 0; i < Each;) {
                if (queue.Push({Gesture::Kind::Change, i * Producers + number})) {
                    ++i;
                } else {
                    std::this_thread::yield();
                }
            }
        });
    }
    uint32_t next[Producers] = {};
    for (uint32_t count = 0; count < Producers * Each;) {
        if (const auto gesture = queue.Peek()) {
            const uint32_t number = gesture->parameter % Producers;
            EXPECT_EQ(gesture->parameter / Producers, next[number]++);
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
