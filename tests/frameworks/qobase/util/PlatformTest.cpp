// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/DebugTrace.h"
#include "frameworks/qobase/util/Realtime.h"
#include "frameworks/qobase/util/Tick.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace {

/// Half of the smallest normal number: a denormal one, computed where the compiler can't see.
float HalfOfSmallest()
{
    volatile float smallest = std::numeric_limits<float>::min();
    volatile float half = 0.5F;
    return smallest * half;
}

/// A normal number, provided that a denormal factor counts.
float EnlargedDenormal()
{
    volatile float denormal = std::numeric_limits<float>::denorm_min();
    volatile float large = 1e20F;
    return denormal * large;
}

TEST(ScopedDenormalGuard, FlushesResultsAndInputsInsideItsScopeOnly)
{
#if defined(__SSE2__) || defined(__aarch64__)
    EXPECT_NE(HalfOfSmallest(), 0.0F);
    {
        const Util::ScopedDenormalGuard outer;
        EXPECT_EQ(HalfOfSmallest(), 0.0F);
        EXPECT_EQ(EnlargedDenormal(), 0.0F);
        {
            const Util::ScopedDenormalGuard inner;
        }
        EXPECT_EQ(HalfOfSmallest(), 0.0F); // the inner one gives back what it found
    }
    EXPECT_NE(HalfOfSmallest(), 0.0F);
    EXPECT_NE(EnlargedDenormal(), 0.0F);
#else
    GTEST_SKIP() << "no such mode on this processor";
#endif
}

TEST(Tick, IsNeverZeroAndNeverGoesBack)
{
    uint32_t before = Util::GetTickCount();
    for (int i = 0; i < 1000; ++i) {
        const uint32_t now = Util::GetTickCount();
        ASSERT_NE(now, 0U);
        ASSERT_LT(now - before, 60'000U); // unsigned: a step back would be a huge one forward
        before = now;
    }
}

TEST(DebugTrace, GoesToTheSinkUntilItIsTakenAway)
{
    std::vector<String> texts;
    Util::SetDebugTraceSink([&texts](const String& text) { texts.push_back(text); });
    Util::DebugTrace("one");
    Util::SetDebugTraceSink([](const String&) { throw 1; });
    Util::DebugTrace("a failing sink stops nothing");
    Util::SetDebugTraceSink(nullptr);
    ASSERT_EQ(texts.size(), 1U);
    EXPECT_EQ(texts[0], "one");
}

} // namespace
