// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/CriticalSection.h"

#include <gtest/gtest.h>

#include <future>
#include <mutex>
#include <thread>
#include <vector>

namespace {

/// What another thread gets when it tries; it gives the section back at once.
bool OthersCanEnter(Util::CriticalSection& section)
{
    return std::async(std::launch::async,
                      [&section] {
                          if (!section.TryEnter())
                              return false;
                          section.Leave();
                          return true;
                      })
        .get();
}

TEST(CriticalSection, KeepsItsName)
{
    const Util::CriticalSection section(String("%1 UI CritSec").arg("PuffGuard"));
    EXPECT_EQ(section.GetName(), "PuffGuard UI CritSec");
}

TEST(CriticalSection, IsFreeOnlyAfterAsManyLeavesAsEnters)
{
    Util::CriticalSection section("test");
    EXPECT_TRUE(OthersCanEnter(section));
    section.Enter();
    ASSERT_TRUE(section.TryEnter());
    EXPECT_FALSE(OthersCanEnter(section));
    section.Leave();
    EXPECT_FALSE(OthersCanEnter(section));
    section.Leave();
    EXPECT_TRUE(OthersCanEnter(section));
}

TEST(CriticalSection, TheGuardLeavesAtTheEndOfTheScopeAlsoByException)
{
    Util::CriticalSection section("test");
    try {
        const Util::CriticalSectionGuard guard(section);
        EXPECT_FALSE(OthersCanEnter(section));
        throw 1;
    } catch (int) {
        EXPECT_TRUE(OthersCanEnter(section));
    }
}

TEST(CriticalSection, ServesTheStandardLocks)
{
    Util::CriticalSection first("first");
    Util::CriticalSection second("second");
    {
        const std::scoped_lock both(first, second);
        EXPECT_FALSE(OthersCanEnter(first));
        EXPECT_FALSE(OthersCanEnter(second));
    }
    const std::unique_lock attempt(first, std::try_to_lock);
    EXPECT_TRUE(attempt.owns_lock());
    EXPECT_TRUE(OthersCanEnter(second));
}

TEST(CriticalSection, KeepsThreadsApart)
{
    Util::CriticalSection section("test");
    long counter = 0;
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 5000; ++i) {
                const Util::CriticalSectionGuard outer(section);
                const Util::CriticalSectionGuard inner(section);
                ++counter;
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_EQ(counter, 20000);
}

} // namespace
