// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/offline/ReadaheadCache.h"

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace {

/// Each frame holds its number, and less of it than that in the second channel.
class Numbers final : public DSP::OfflineSource {
public:
    int64_t GetFrames() const override { return 100'000; }
    const std::vector<DSP::RegionBox>& GetBoxes() const override { return boxes; }
    bool Read(int64_t position, const DSP::MultichannelBufferView<float>& target) override
    {
        for (uint32_t frame = 0; frame < target.GetFrames(); ++frame) {
            target.GetChannel(0)[frame] = static_cast<float>(position + frame);
            target.GetChannel(1)[frame] = -static_cast<float>(position + frame);
        }
        return isGood;
    }

    bool isGood = true;

private:
    std::vector<DSP::RegionBox> boxes;
};

struct ReadaheadCacheTest : testing::Test {
    Numbers numbers;
    DSP::ReadaheadCache cache{numbers, 2, 40'000};
    std::array<std::array<float, 500>, 2> samples{};
    std::array<float*, 2> channels{samples[0].data(), samples[1].data()};
};

TEST_F(ReadaheadCacheTest, ReadingOnAtTwoPlacesHardlyEverAsksTheSource)
{
    constexpr int64_t Behind = 10'000;
    for (int64_t position = Behind; position + 100 <= numbers.GetFrames(); position += 100) {
        for (const int64_t place : {position, position - Behind}) {
            ASSERT_TRUE(cache.Read(place, 100, channels.data()));
            ASSERT_EQ(samples[0][0], static_cast<float>(place));
            ASSERT_EQ(samples[1][99], -static_cast<float>(place + 99));
        }
    }
    EXPECT_GE(cache.GetHits(), 99 * (cache.GetHits() + cache.GetMisses()) / 100);
    EXPECT_EQ(cache.GetHits() + cache.GetMisses(), 1800U);
}

TEST_F(ReadaheadCacheTest, WhatIsntThereFailsAndNothingStaleComesAfterwards)
{
    EXPECT_TRUE(cache.Read(0, 500, channels.data()));
    EXPECT_TRUE(cache.Read(100'000, 0, channels.data()));
    EXPECT_FALSE(cache.Read(100'000, 1, channels.data()));
    EXPECT_FALSE(cache.Read(99'990, 11, channels.data()));
    EXPECT_TRUE(cache.Read(99'990, 10, channels.data()));
    numbers.isGood = false;
    EXPECT_FALSE(cache.Read(0, 1, channels.data()));
    EXPECT_FALSE(cache.Read(99'990, 10, channels.data())); // the window was lost with it
    EXPECT_EQ(cache.GetHits(), 1U);
    EXPECT_EQ(cache.GetMisses(), 5U);
}

TEST(MultichannelBufferView, ShowsNoChannelOnceTheirOwnerHasGone)
{
    std::optional<DSP::MultichannelBuffer> owner(std::in_place, 2, 8);
    auto first = std::make_unique<DSP::MultichannelBufferView<float>>(owner->View(8));
    DSP::MultichannelBufferView<float> copy(*first);
    const DSP::MultichannelBufferView<float> part = copy.Part(2, 3);
    EXPECT_EQ(part.GetChannel(1), owner->GetChannel(1) + 2);
    first.reset(); // one of the list goes, the others stay in it
    DSP::MultichannelBufferView<float> elsewhere(copy);
    std::array<float, 8> other{};
    const std::array<float*, 1> otherChannels{other.data()};
    elsewhere = DSP::MultichannelBufferView<float>(otherChannels, 8);
    owner.reset();
    EXPECT_EQ(copy.GetChannel(0), nullptr);
    EXPECT_EQ(copy.GetChannels()[1], nullptr);
    EXPECT_EQ(copy.GetFrames(), 8U);
    EXPECT_EQ(part.GetChannel(1), nullptr);
    EXPECT_EQ(elsewhere.GetChannel(0), other.data());
}

} // namespace
