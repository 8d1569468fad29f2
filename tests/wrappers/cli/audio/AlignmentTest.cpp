// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/Alignment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <deque>
#include <random>

namespace {

using Cli::Alignment;
using Cli::LatencyMode;

struct Result {
    std::vector<double> input;
    std::vector<double> output;
};

struct Case {
    size_t channels;
    uint32_t latency;
    size_t frames;
    size_t block;
};

std::vector<double> MakeSamples(size_t count)
{
    std::mt19937 random(3);
    std::vector<double> samples(count);
    // 31 significant bits: more than a float holds.
    std::generate(samples.begin(), samples.end(), [&] {
        return (static_cast<double>(random() >> 1U) - 1073741824.0) / 1073741824.0;
    });
    return samples;
}

Result RunThrough(const Case& c, LatencyMode mode, float gain, const std::vector<double>& samples)
{
    // The effect delays each channel, and multiplies.
    std::vector<std::deque<float>> lines(c.channels, std::deque<float>(c.latency, 0.0F));
    Alignment alignment(
        c.channels, c.block, c.latency, mode, [&](float** channels, uint32_t frames) {
            for (size_t channel = 0; channel < lines.size(); ++channel) {
                for (uint32_t i = 0; i < frames; ++i) {
                    lines[channel].push_back(channels[channel][i] * gain);
                    channels[channel][i] = lines[channel].front();
                    lines[channel].pop_front();
                }
            }
        });
    Result result;
    const auto append = [&](const Alignment::Pair& pair) {
        result.input.insert(result.input.end(), pair.input.begin(), pair.input.end());
        result.output.insert(result.output.end(), pair.output.begin(), pair.output.end());
    };
    for (size_t begin = 0; begin < samples.size(); begin += c.block * c.channels) {
        const size_t count = std::min(c.block * c.channels, samples.size() - begin);
        append(alignment.Push(std::span(samples).subspan(begin, count)));
    }
    for (auto pair = alignment.Drain(); !pair.output.empty(); pair = alignment.Drain()) {
        append(pair);
    }
    return result;
}

TEST(Alignment, PairsEachOutputWithItsInputToTheLastBit)
{
    for (const Case& c : {Case{1, 0, 1000, 64},
                          Case{1, 1, 1000, 64},
                          Case{2, 100, 1000, 64},
                          Case{2, 64, 640, 64},
                          Case{3, 5000, 10, 7},
                          Case{1, 4096, 9999, 1},
                          Case{24, 300, 777, 4096}}) {
        SCOPED_TRACE(testing::Message() << c.channels << " channels, late by " << c.latency);
        const auto samples = MakeSamples(c.frames * c.channels);
        const Result untouched = RunThrough(c, LatencyMode::Trim, 1.0F, samples);
        EXPECT_EQ(untouched.output, samples);
        EXPECT_EQ(untouched.input, samples);
        const Result halved = RunThrough(c, LatencyMode::Trim, 0.5F, samples);
        ASSERT_EQ(halved.output.size(), samples.size());
        EXPECT_EQ(halved.input, samples);
        for (size_t i = 0; i < samples.size(); ++i) {
            // A half is exact in a float, so what the effect changed is half the float, exactly.
            const auto asFloat = static_cast<double>(static_cast<float>(samples[i]));
            ASSERT_EQ(halved.output[i], samples[i] - asFloat / 2) << i;
        }
        // Kept, the latency comes in front, and the whole signal behind it.
        std::vector<double> late(c.latency * c.channels, 0.0);
        late.insert(late.end(), samples.begin(), samples.end());
        EXPECT_EQ(RunThrough(c, LatencyMode::Keep, 1.0F, samples).output, late);
    }
}

} // namespace
