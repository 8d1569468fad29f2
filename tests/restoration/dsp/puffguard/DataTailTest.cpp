// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/DataTail.h"
#include "restoration/dsp/puffguard/DataTail1D.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <numeric>

namespace {

std::vector<float> Read(const float* values, int32_t count)
{
    return {values, values + count};
}

TEST(DataTail, ResizedBlockKeepsTheTail)
{
    DSP::DataTail buffer;
    buffer.configure(2, 3, 2);
    for (int32_t channel = 0; channel < 2; ++channel) {
        std::iota(buffer.GetChannel(channel),
                  buffer.GetChannel(channel) + 5,
                  channel == 0 ? 0.0F : 10.0F);
    }
    buffer.resizeBlock(5);
    EXPECT_EQ(buffer.GetLength(), 7);
    EXPECT_EQ(Read(buffer.GetChannel(1), 2), (std::vector<float>{10, 11}));
    EXPECT_EQ(buffer.GetChannels()[1], buffer.GetChannel(1));
    EXPECT_EQ(buffer.GetChannel(1)[5], 0.0F);
    EXPECT_EQ(buffer.GetChannel(1)[6], 0.0F);
    buffer.zero();
    EXPECT_EQ(Read(buffer.GetChannel(0), 7), std::vector<float>(7, 0.0F));
}

TEST(DataTailCirc, SamplesMoveOnLikeThoseOfADelayLine)
{
    constexpr int32_t Length = 7;
    DSP::DataTailCirc line;
    line.configure(2, Length, 0);
    std::deque<float> wanted(Length, 0.0F);
    float next = 1;
    for (const int32_t count : {1, 3, 7, 2, 2, 2, 5, 0, 9, 4, 4, 6, 1, 1, 1}) {
        line.consume(count);
        const int32_t added = std::min(count, Length);
        for (int32_t i = Length - added; i < Length; ++i, next += 1) {
            line.GetChannel(0)[i] = next;
            line.GetChannel(1)[i] = -next;
            wanted.pop_front();
            wanted.push_back(next);
        }
        for (int32_t i = 0; i < Length; ++i) {
            ASSERT_EQ(line.GetChannel(0)[i], wanted[static_cast<std::size_t>(i)]) << count;
            ASSERT_EQ(line.GetChannel(1)[i], -wanted[static_cast<std::size_t>(i)]) << count;
        }
        ASSERT_EQ(line.GetChannels()[1], line.GetChannel(1));
    }
}

TEST(DataTailCirc, MayBeMadeLargerOnTheWay)
{
    DSP::DataTailCirc line;
    line.configure(1, 4, 0);
    line.consume(3); // the samples no longer lie at the start of the memory
    std::iota(line.GetChannel(0), line.GetChannel(0) + 4, 1.0F);
    line.resizeBlock(6);
    EXPECT_EQ(Read(line.GetChannel(0), 4), (std::vector<float>{1, 2, 3, 4}));
    line.consume(6);
    line.consume(6);
    line.zero();
    EXPECT_EQ(Read(line.GetChannel(0), 6), std::vector<float>(6, 0.0F));
    line.consume(3);
    line.configure(2, 6, 5);
    for (int32_t channel = 0; channel < 2; ++channel) {
        EXPECT_EQ(Read(line.GetChannel(channel), 11), std::vector<float>(11, 0.0F));
        std::iota(line.GetChannel(channel), line.GetChannel(channel) + 11, 1.0F);
    }
    line.consume(4);
    EXPECT_EQ(Read(line.GetChannel(1), 2), (std::vector<float>{5, 6}));
}

TEST(DataTail1D, AppendsBehindTheTailAndDropsTheOldest)
{
    DSP::DataTail1D history;
    history.configure(3, 2, true);
    const float values[] = {0, 1, 2, 3};
    history.append(values, 1, 1);
    history.append(values, 2, 2);
    EXPECT_EQ(Read(history.GetData(), 5), (std::vector<float>{0, 0, 1, 2, 3}));
    // Only the tail's two values move; what is behind them is to be overwritten.
    history.consume(3);
    EXPECT_EQ(Read(history.GetData(), 2), (std::vector<float>{2, 3}));
    history.append(values, 1, 3);
    EXPECT_EQ(history.GetData()[2], 3.0F);
    history.clear();
    EXPECT_EQ(Read(history.GetData(), 5), std::vector<float>(5, 0.0F));
    history.append(values, 1, 1);
    EXPECT_EQ(history.GetData()[2], 1.0F);
    history.configure(3, 1, false); // the place of the tail may change without clearing
    EXPECT_EQ(history.GetData()[2], 1.0F);
}

} // namespace
