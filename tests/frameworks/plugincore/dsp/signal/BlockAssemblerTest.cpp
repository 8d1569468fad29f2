// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/BlockAssembler.h"

#include <gtest/gtest.h>

namespace {

using DSP::BlockAssembler;
using Frame = BlockAssembler::Frame;
using CopyOut = BlockAssembler::CopyOut;

constexpr uint32_t MaxBlock = 100;

std::vector<float> Ramp(uint32_t count)
{
    std::vector<float> samples(count);
    for (uint32_t i = 0; i < count; ++i) {
        samples[i] = static_cast<float>(i + 1);
    }
    return samples;
}

Frame MakeBlock(float* const* channels, std::size_t frames)
{
    Frame block;
    block.frames = static_cast<uint32_t>(frames);
    block.inputs = channels;
    return block;
}

// One block; what an "element" does to each frame is `act`.
template <typename Action>
void Pass(BlockAssembler& assembler, const Frame& block, Action act, CopyOut copyOut = CopyOut::Yes)
{
    assembler.Begin(block);
    Frame frame;
    while (assembler.Next(frame)) {
        act(frame);
    }
    assembler.End(copyOut);
}

// Sends the samples through in blocks, in place; each frame is negated.
std::vector<float> Negate(BlockAssembler& assembler, std::vector<float> samples, uint32_t block)
{
    for (std::size_t done = 0; done < samples.size(); done += block) {
        float* channels[] = {samples.data() + done};
        const std::size_t count = std::min<std::size_t>(block, samples.size() - done);
        Pass(assembler, MakeBlock(channels, count), [](const Frame& frame) {
            for (uint32_t i = 0; i < frame.frames; ++i) {
                frame.inputs[0][i] = -frame.inputs[0][i];
            }
        });
    }
    return samples;
}

BlockAssembler MakeAssembler(uint32_t frameSize)
{
    BlockAssembler assembler(1, 1, 0);
    assembler.Resize(MaxBlock, 1);
    assembler.SetFrameSize(frameSize);
    return assembler;
}

} // namespace

// The whole purpose in one statement: whatever the cut, the output is the processed input, late by
// the frame size less one, after that much silence. Without a frame size blocks pass through.
TEST(BlockAssembler, DelaysByTheFrameLessOneForAnyCut)
{
    const std::vector<float> input = Ramp(400);
    for (const uint32_t frameSize : {0U, 1U, 2U, 7U, 32U, 64U, 100U}) {
        for (const uint32_t block : {1U, 3U, 31U, 32U, 33U, 64U, 100U}) {
            BlockAssembler assembler = MakeAssembler(frameSize);
            const std::vector<float> output = Negate(assembler, input, block);
            const uint32_t latency = assembler.GetLatency();
            ASSERT_EQ(latency, frameSize == 0 ? 0 : frameSize - 1);
            for (uint32_t i = 0; i < output.size(); ++i) {
                const float expected = i < latency ? 0.0F : -input[i - latency];
                ASSERT_EQ(output[i], expected) << frameSize << " " << block << " " << i;
            }
        }
    }
}

TEST(BlockAssembler, WritesToSeparateAndSideOutputsWithTheSameDelay)
{
    BlockAssembler assembler(1, 1, 1);
    assembler.Resize(MaxBlock, 1);
    assembler.SetFrameSize(8);
    const std::vector<float> input = Ramp(90);
    std::vector<float> output(input.size(), 99.0F);
    std::vector<float> side(input.size(), 99.0F);
    for (std::size_t done = 0; done < input.size(); done += 15) {
        auto* in = const_cast<float*>(input.data()) + done;
        float* out = output.data() + done;
        float* sideOut = side.data() + done;
        Frame block = MakeBlock(&in, 15);
        block.outputs = &out;
        block.sideOutputs = &sideOut;
        Pass(assembler, block, [](const Frame& frame) {
            for (uint32_t i = 0; i < frame.frames; ++i) {
                frame.outputs[0][i] = 2 * frame.inputs[0][i];
                frame.sideOutputs[0][i] = 3 * frame.inputs[0][i];
            }
        });
    }
    EXPECT_EQ(input, Ramp(90)); // not in place: the caller's input stays
    for (std::size_t i = 7; i < input.size(); ++i) {
        ASSERT_EQ(output[i], 2 * input[i - 7]);
        ASSERT_EQ(side[i], 3 * input[i - 7]);
    }
}

TEST(BlockAssembler, KeepsTheCallersMemoryWithoutCopyOut)
{
    BlockAssembler assembler = MakeAssembler(4);
    std::vector<float> samples = Ramp(10);
    float* channels[] = {samples.data()};
    Pass(
        assembler,
        MakeBlock(channels, 10),
        [](const Frame& frame) { frame.inputs[0][0] = -1; },
        CopyOut::No);
    EXPECT_EQ(samples, Ramp(10));
}

// Frame 8, block of 20 at an empty accumulator. An input position at 9 stands in the second frame
// as 1; one at 8 is no longer in the first. An output position may stand on the frame's end.
TEST(BlockAssembler, TellsEachFrameThePositionsThatFallIntoIt)
{
    const auto positions =
        [](std::optional<uint32_t> input, std::optional<uint32_t> output, uint32_t waiting = 0) {
            BlockAssembler assembler = MakeAssembler(8);
            Negate(assembler, Ramp(waiting), 1);
            std::vector<float> samples(20);
            float* channels[] = {samples.data()};
            Frame block = MakeBlock(channels, 20);
            block.inputPosition = input;
            block.outputPosition = output;
            std::vector<std::pair<std::optional<uint32_t>, std::optional<uint32_t>>> seen;
            Pass(assembler, block, [&](const Frame& frame) {
                seen.emplace_back(frame.inputPosition, frame.outputPosition);
            });
            return seen;
        };
    const auto input = positions(9, std::nullopt);
    ASSERT_EQ(input.size(), 2U);
    EXPECT_EQ(input[0].first, std::nullopt);
    EXPECT_EQ(input[1].first, 1U);
    EXPECT_EQ(positions(8, std::nullopt)[0].first, std::nullopt);
    EXPECT_EQ(positions(8, std::nullopt)[1].first, 0U);
    EXPECT_EQ(positions(4, std::nullopt, 4)[1].first, 0U); // behind 4 samples that wait

    EXPECT_EQ(positions(std::nullopt, 8)[0].second, 8U); // on the end
    EXPECT_EQ(positions(std::nullopt, 9)[0].second, std::nullopt);
    EXPECT_EQ(positions(std::nullopt, 3)[1].second, 0U); // before it: the floor
    EXPECT_EQ(positions(2, 3)[0].second, 5U);            // counted from the input position
}

TEST(BlockAssembler, ResetStartsAgainWithSilenceInsideAndOutsideABlock)
{
    BlockAssembler assembler = MakeAssembler(16);
    const std::vector<float> first = Negate(assembler, Ramp(60), 13);
    assembler.Reset();
    EXPECT_EQ(Negate(assembler, Ramp(60), 13), first);

    // Inside a block what waits is silenced; the block's own input goes on.
    std::vector<float> samples = Ramp(20);
    float* channels[] = {samples.data()};
    assembler.Begin(MakeBlock(channels, 20));
    assembler.Reset();
    Frame frame;
    EXPECT_TRUE(assembler.Next(frame));
    assembler.End(CopyOut::Yes);
    EXPECT_EQ(samples[0], 0.0F);
}

TEST(BlockAssembler, TreatsAMissingChannelAsSilenceAndDoesNotWriteToIt)
{
    BlockAssembler assembler(2, 2, 0);
    assembler.Resize(MaxBlock, 1);
    assembler.SetFrameSize(4);
    std::vector<float> left = Ramp(12);
    float* channels[] = {left.data(), nullptr};
    Pass(assembler, MakeBlock(channels, 12), [](const Frame& frame) {
        for (uint32_t i = 0; i < frame.frames; ++i) {
            EXPECT_EQ(frame.inputs[1][i], 0.0F);
        }
    });
    EXPECT_EQ(left[3], 1.0F);
    EXPECT_EQ(left[11], 9.0F);
}
