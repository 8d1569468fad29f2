// SPDX-License-Identifier: ISC
// Both sides set two parameters in turns; what the host has said last, and nobody since, is said
// again.
#include "wrappers/common/LastWords.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using Said = std::map<uint32_t, float>;

class LastWordsTest : public testing::Test {
protected:
    Said Restate() const
    {
        Said said;
        words.Restate([&](uint32_t index, float word) { said[index] = word; });
        return said;
    }
    /// Loads a session while `meanwhile` happens, and keeps what is taken over.
    bool Load(
        bool isSession, const std::function<void()>& meanwhile = [] {})
    {
        const auto load = [&] {
            meanwhile();
            return isSession;
        };
        return words.Load(load, [this](uint32_t index) { taken.insert(index); });
    }

    Wrapper::LastWords words{2};
    std::set<uint32_t> taken;
};

} // namespace

TEST_F(LastWordsTest, AValueIsSaidAgainUntilTheUISideActsOnItsParameter)
{
    EXPECT_EQ(Restate(), Said{});
    words.Keep(0, 0.25F);
    words.Keep(1, 0.0F);
    words.Keep(0, 0.5F);
    EXPECT_EQ(Restate(), (Said{{0, 0.5F}, {1, 0.0F}}));
    EXPECT_EQ(Restate(), (Said{{0, 0.5F}, {1, 0.0F}})) << "as often as it takes";
    words.Drop(0);
    EXPECT_EQ(Restate(), (Said{{1, 0.0F}}));
    words.Keep(0, 1.0F);
    EXPECT_EQ(Restate(), (Said{{0, 1.0F}, {1, 0.0F}}));
}

TEST_F(LastWordsTest, WhatTheHostSetsWhileASessionIsLoadedStaysInEveryBlock)
{
    words.Keep(0, 0.25F);
    EXPECT_TRUE(Load(true, [this] {
        EXPECT_TRUE(words.MustBeginBlock()) << "some of the session may be there";
        EXPECT_EQ(Restate(), Said{}) << "it is newer than what came before";
        words.Keep(1, 0.75F);
    }));
    EXPECT_TRUE(words.MustBeginBlock()) << "the rest of it";
    EXPECT_EQ(Restate(), (Said{{1, 0.75F}}));
    EXPECT_EQ(taken, (std::set<uint32_t>{0}));
}

TEST_F(LastWordsTest, WhatIsNoSessionTakesNoWordFromTheHost)
{
    words.Keep(0, 0.25F);
    words.Keep(1, 0.5F);
    EXPECT_FALSE(Load(false, [this] { words.Keep(1, 0.75F); }));
    EXPECT_EQ(taken, std::set<uint32_t>{});
    EXPECT_EQ(Restate(), (Said{{0, 0.25F}, {1, 0.75F}}));
}
