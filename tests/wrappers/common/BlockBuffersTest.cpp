// SPDX-License-Identifier: ISC
// How a host may share memory is checked for every format; this is about how a block is cut.
#include "wrappers/common/BlockBuffers.h"

#include <gtest/gtest.h>

#include <vector>

namespace {

using Offsets = std::vector<uint32_t>;

/// Where the pieces of 2500 frames of two channels begin, with as many outputs.
Offsets CutOf(uint32_t outputCount)
{
    std::vector<std::vector<float>> memory(4, std::vector<float>(2500));
    const float* inputs[2] = {memory[0].data(), memory[1].data()};
    float* outputs[2] = {memory[2].data(), outputCount == 2 ? memory[3].data() : nullptr};
    Wrapper::BlockBuffers buffers;
    buffers.SetChannels(2);
    Offsets offsets;
    uint32_t reached = 0;
    buffers.Run({inputs, outputs, 2500}, [&](float** channels, uint32_t offset, uint32_t frames) {
        EXPECT_EQ(channels[0] == outputs[0], outputCount == 2) << "copied only where it must be";
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
    EXPECT_EQ(CutOf(2), Offsets{0});
    EXPECT_EQ(CutOf(1), (Offsets{0, 1024, 2048}));
}
