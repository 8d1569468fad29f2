// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/CriticalSection.h"

#include <gtest/gtest.h>

#include <future>
#include <mutex>

namespace {

/// What another thread gets when it tries; it gives the section back at once.
bool OthersCanEnter(Util::CriticalSection& section)
{
    return std::async(std::launch::async,
                      [&section] {
                          if (!section.TryEnter()) {
                              return false;
                          }
                          section.Leave();
                          return true;
                      })
        .get();
}

// The analysis takes no lock for one that its owner may enter again.
UTIL_NO_THREAD_SAFETY_ANALYSIS void EnterTwice(Util::CriticalSection& section)
{
    EXPECT_TRUE(OthersCanEnter(section));
    section.Enter();
    ASSERT_TRUE(section.TryEnter());
    EXPECT_FALSE(OthersCanEnter(section));
    section.Leave();
    EXPECT_FALSE(OthersCanEnter(section));
    section.Leave();
    EXPECT_TRUE(OthersCanEnter(section));
}

TEST(CriticalSection, IsFreeOnlyAfterAsManyLeavesAsEnters)
{
    Util::CriticalSection section("test");
    EnterTwice(section);
}

TEST(CriticalSection, TheGuardLeavesAtTheEndOfTheScope)
{
    Util::CriticalSection section("test");
    {
        const Util::CriticalSectionGuard guard(section);
        EXPECT_FALSE(OthersCanEnter(section));
    }
    EXPECT_TRUE(OthersCanEnter(section));
    const std::unique_lock attempt(section, std::try_to_lock); // it is a standard lockable, too
    EXPECT_FALSE(OthersCanEnter(section));
}

} // namespace
