// SPDX-License-Identifier: ISC
#include "wrappers/common/BlockBuffers.h"

#include <gtest/gtest.h>

#include <numeric>
#include <vector>

using Wrapper::Block;
using Wrapper::BlockBuffers;

namespace {

constexpr int none = -1;

/// Which memory each of two channels uses.
struct Wiring {
    const char* name;
    int inputs[2];
    int outputs[2];
};

constexpr Wiring wirings[] = {
    {"apart", {0, 1}, {2, 3}},
    {"in place", {0, 1}, {0, 1}},
    {"crossed", {0, 1}, {1, 0}},
    {"shifted", {0, 1}, {1, 2}},
    {"one input twice", {0, 0}, {0, 1}},
    {"one output twice", {0, 1}, {2, 2}},
    {"an input missing", {none, 1}, {0, 1}},
    {"an output missing", {0, 1}, {none, 1}},
    {"nothing there", {none, none}, {none, none}},
};

class Memory {
public:
    explicit Memory(uint32_t frames)
        : samples(4, std::vector<float>(frames))
    {
        float next = 1.0F;
        for (auto& channel : samples) {
            std::iota(channel.begin(), channel.end(), next);
            next += 1e5F;
        }
    }

    float* At(int index)
    {
        return index == none ? nullptr : samples[static_cast<size_t>(index)].data();
    }

private:
    std::vector<std::vector<float>> samples;
};

// Stands for a repair with a memory: each channel's running sum, so that a piece that is left out,
// doubled or given to the wrong channel shows.
class RunningSums {
public:
    void operator()(float** channels, uint32_t frames)
    {
        for (size_t c = 0; c < 2; ++c) {
            for (uint32_t i = 0; i < frames; ++i) {
                sums[c] += static_cast<double>(channels[c][i]) * static_cast<double>(c + 1);
                channels[c][i] = static_cast<float>(sums[c]);
            }
        }
    }

private:
    double sums[2] = {};
};

} // namespace

TEST(BlockBuffersTest, HowTheHostSharesMemoryChangesNoSample)
{
    BlockBuffers buffers; // one for all: what is left of one block must not show in another
    buffers.SetChannels(2);
    for (const Wiring& wiring : wirings) {
        for (const uint32_t frames : {1U, 1024U, 1025U, 5000U}) {
            SCOPED_TRACE(testing::Message() << wiring.name << ", " << frames);
            // The plain twin: inputs are read before anything is written.
            Memory original(frames);
            const std::vector<float> silence(frames);
            std::vector<float> expected[2];
            for (size_t c = 0; c < 2; ++c) {
                const float* in = original.At(wiring.inputs[c]);
                in = in != nullptr ? in : silence.data();
                expected[c].assign(in, in + frames);
            }
            float* pointers[2] = {expected[0].data(), expected[1].data()};
            RunningSums()(pointers, frames);

            Memory memory(frames);
            const float* inputs[2] = {memory.At(wiring.inputs[0]), memory.At(wiring.inputs[1])};
            float* outputs[2] = {memory.At(wiring.outputs[0]), memory.At(wiring.outputs[1])};
            RunningSums sums;
            uint32_t reached = 0;
            buffers.Run(Block{inputs, outputs, frames},
                        [&](float** channels, uint32_t offset, uint32_t count) {
                            EXPECT_EQ(offset, reached);
                            reached += count;
                            sums(channels, count);
                        });
            EXPECT_EQ(reached, frames);
            for (size_t c = 0; c < 2; ++c) {
                // Of two channels in one place the last one stays.
                const bool isOverwritten = c == 0 && wiring.outputs[0] == wiring.outputs[1];
                if (outputs[c] != nullptr && !isOverwritten) {
                    EXPECT_EQ(std::vector<float>(outputs[c], outputs[c] + frames), expected[c]);
                }
            }
        }
    }
}

TEST(BlockBuffersTest, ABlockOfNoFramesIsNotLookedInto)
{
    BlockBuffers buffers;
    buffers.SetChannels(2);
    buffers.Run(Block{nullptr, nullptr, 0}, [&](float**, uint32_t, uint32_t) { FAIL(); });
}

TEST(BlockBuffersTest, ABlockOfPlainMemoryStaysWhole)
{
    Memory memory(5000);
    const float* inputs[2] = {memory.At(0), memory.At(1)};
    float* outputs[2] = {memory.At(2), memory.At(3)};
    BlockBuffers buffers;
    buffers.SetChannels(2);
    int calls = 0;
    buffers.Run(Block{inputs, outputs, 5000}, [&](float** channels, uint32_t, uint32_t) {
        ++calls;
        EXPECT_EQ(channels[0], outputs[0]);
    });
    EXPECT_EQ(calls, 1);
}
