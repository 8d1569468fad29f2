// SPDX-License-Identifier: ISC
// How a host may share memory is checked for every format; this is about how a block is cut.
#include "wrappers/common/BlockBuffers.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Offsets = std::vector<uint32_t>;

constexpr int None = -1;

/// Where the pieces of 2500 frames of two channels begin, with the second output in this memory:
/// 0 and 1 are the inputs, 2 is the first output.
Offsets CutOf(int second)
{
    std::vector<std::vector<float>> memory(4, std::vector<float>(2500));
    const float* inputs[2] = {memory[0].data(), memory[1].data()};
    float* outputs[2] = {memory[2].data(), second == None ? nullptr : memory[second].data()};
    Wrapper::BlockBuffers buffers;
    buffers.SetChannels(2);
    Offsets offsets;
    uint32_t reached = 0;
    buffers.Run({inputs, outputs, 2500}, [&](float** channels, uint32_t offset, uint32_t frames) {
        EXPECT_EQ(channels[0] == outputs[0], second == 1 || second == 3) << second;
        EXPECT_EQ(offset, reached);
        offsets.push_back(offset);
        reached += frames;
    });
    EXPECT_EQ(reached, 2500U);
    return offsets;
}

} // namespace

TEST(BlockBuffersTest, OnlyWhatNeedsACopyIsCut)
{
    for (const int plain : {1, 3}) {
        EXPECT_EQ(CutOf(plain), Offsets{0});
    }
    for (const int shared : {0, 2, None}) {
        EXPECT_EQ(CutOf(shared), (Offsets{0, 1024, 2048}));
    }
}
