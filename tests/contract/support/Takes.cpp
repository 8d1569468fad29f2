// SPDX-License-Identifier: ISC
#include "tests/contract/support/Takes.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace Contract {

namespace {

// In a host's memory before a block; no take holds it.
constexpr float Leftover = 1234.5F;

std::string Place(size_t channel, size_t frame, float sample)
{
    return "channel " + std::to_string(channel) + ", frame " + std::to_string(frame) + ": " +
           std::to_string(sample);
}

} // namespace

Audio MakeSpeech(double rate, uint32_t channels, double seconds)
{
    return TestHost::MakeSpeechLike(
        channels, static_cast<uint32_t>(rate * seconds), static_cast<float>(rate));
}

Audio Play(FormatHost& host, const Audio& input, const std::function<uint32_t()>& nextBlock)
{
    const auto frames = static_cast<uint32_t>(input[0].size());
    Audio output(input.size(), std::vector<float>(frames, Leftover));
    bool isInPlace = false;
    for (uint32_t done = 0; done < frames; isInPlace = !isInPlace) {
        const uint32_t block = std::min(frames - done, nextBlock());
        const float* inputs[PLUGIN_CORE_MAX_CHANNELS] = {};
        float* outputs[PLUGIN_CORE_MAX_CHANNELS] = {};
        for (size_t c = 0; c < input.size(); ++c) {
            outputs[c] = output[c].data() + done;
            inputs[c] = input[c].data() + done;
            if (isInPlace) {
                std::copy_n(inputs[c], block, outputs[c]);
                inputs[c] = outputs[c];
            }
        }
        host.Process(inputs, outputs, block);
        done += block;
    }
    return output;
}

Audio Play(FormatHost& host, const Audio& input, uint32_t block)
{
    return Play(host, input, [block] { return block; });
}

void PlaySilence(FormatHost& host, uint32_t channels, uint32_t frames)
{
    Play(host, Audio(channels, std::vector<float>(frames)), 512);
}

void Settle(FormatHost& host, uint32_t channels)
{
    PlaySilence(host, channels, 64);
    host.Reset();
}

std::vector<uint8_t> MakeState(const std::function<void(TestHost::Instance&)>& change)
{
    TestHost::Instance instance(48000.0F, 1);
    change(instance);
    return instance.SaveState();
}

std::vector<uint8_t> MakeShortestState()
{
    return MakeState([](TestHost::Instance& instance) {
        instance.SetElement(TestHost::ElementLatencyScaling, 0.0F);
    });
}

Audio Expected(const Audio& input, double rate, const Controls& controls)
{
    TestHost::Instance direct(static_cast<float>(rate), static_cast<uint32_t>(input.size()));
    direct.Set(TestHost::Sensitivity, controls.sensitivity);
    direct.Set(TestHost::Strength, controls.strength);
    direct.Set(TestHost::UpperFrequency, controls.upperFrequency);
    Audio audio = input;
    direct.Run(audio, 512);
    return audio;
}

std::string Difference(const Audio& take, const Audio& expected)
{
    return Difference(take, expected, 0, static_cast<uint32_t>(expected[0].size()));
}

std::string Difference(const Audio& take, const Audio& expected, uint32_t begin, uint32_t end)
{
    for (size_t c = 0; c < expected.size(); ++c) {
        for (size_t i = begin; i < end; ++i) {
            // Zeros of either sign are equal, but not the same.
            if (std::bit_cast<uint32_t>(take[c][i]) != std::bit_cast<uint32_t>(expected[c][i])) {
                return Place(c, i, take[c][i]) + " instead of " + std::to_string(expected[c][i]);
            }
        }
    }
    return {};
}

Audio Delayed(const Audio& input, uint32_t latency)
{
    Audio late(input.size(), std::vector<float>(input[0].size()));
    for (size_t c = 0; c < input.size(); ++c) {
        for (size_t i = latency; i < late[c].size(); ++i) {
            late[c][i] = input[c][i - latency];
        }
    }
    return late;
}

float LargestError(const Audio& take, const Audio& expected)
{
    float largest = 0.0F;
    for (size_t c = 0; c < expected.size(); ++c) {
        for (size_t i = 0; i < expected[c].size(); ++i) {
            largest = std::max(largest, std::abs(take[c][i] - expected[c][i]));
        }
    }
    return largest;
}

std::string BadSample(const Audio& take)
{
    for (size_t c = 0; c < take.size(); ++c) {
        for (size_t i = 0; i < take[c].size(); ++i) {
            if (!std::isfinite(take[c][i]) || std::fpclassify(take[c][i]) == FP_SUBNORMAL) {
                return Place(c, i, take[c][i]);
            }
        }
    }
    return {};
}

} // namespace Contract
