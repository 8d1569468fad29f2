// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/Alignment.h"

#include <algorithm>
#include <utility>

namespace Cli {

Alignment::Alignment(size_t newChannels,
                     size_t newGreatestBlock,
                     uint32_t newLatency,
                     LatencyMode mode,
                     Effect newEffect)
    : channels(newChannels)
    , greatestBlock(newGreatestBlock)
    , effect(std::move(newEffect))
    , delayLine(newLatency * channels)
    , framesToSkip(mode == LatencyMode::Trim ? newLatency : 0)
    , framesToDrain(newLatency)
    , block(channels * greatestBlock)
    , channelPointers(channels)
    , inputs(channels * greatestBlock)
    , outputs(channels * greatestBlock)
    , silence(channels * greatestBlock)
{
}

void Alignment::SplitChannels(std::span<const double> samples, size_t frames)
{
    for (size_t channel = 0; channel < channels; ++channel) {
        float* target = block.data() + channel * greatestBlock;
        channelPointers[channel] = target;
        for (size_t frame = 0; frame < frames; ++frame) {
            target[frame] = static_cast<float>(samples[frame * channels + channel]);
        }
    }
}

// The delay line gives its oldest samples and takes as many new ones.
void Alignment::DelayInput(std::span<const double> samples)
{
    double* target = inputs.data();
    if (delayLine.empty()) {
        std::copy(samples.begin(), samples.end(), target);
        return;
    }
    while (!samples.empty()) {
        const size_t count = std::min(samples.size(), delayLine.size() - delayPosition);
        double* const kept = delayLine.data() + delayPosition;
        target = std::copy_n(kept, count, target);
        std::copy_n(samples.begin(), count, kept);
        samples = samples.subspan(count);
        delayPosition = (delayPosition + count) % delayLine.size();
    }
}

void Alignment::MakeOutput(size_t frames)
{
    for (size_t channel = 0; channel < channels; ++channel) {
        const float* const effected = block.data() + channel * greatestBlock;
        for (size_t frame = 0; frame < frames; ++frame) {
            const double input = inputs[frame * channels + channel];
            const auto given = static_cast<double>(static_cast<float>(input));
            const auto taken = static_cast<double>(effected[frame]);
            const double kept = input + (taken - given);
            // Without low bits to keep, the effect's own value needs no arithmetic.
            outputs[frame * channels + channel] = given == input ? taken : kept;
        }
    }
}

Alignment::Pair Alignment::Push(std::span<const double> samples)
{
    const size_t frames = samples.size() / channels;
    SplitChannels(samples, frames);
    effect(channelPointers.data(), static_cast<uint32_t>(frames));
    DelayInput(samples.first(frames * channels));
    MakeOutput(frames);
    const auto skipped = static_cast<size_t>(std::min<uint64_t>(framesToSkip, frames));
    framesToSkip -= skipped;
    const size_t begin = skipped * channels;
    const size_t count = (frames - skipped) * channels;
    return {std::span(inputs).subspan(begin, count), std::span(outputs).subspan(begin, count)};
}

Alignment::Pair Alignment::Drain()
{
    // A recording shorter than the latency needs several rounds before anything comes.
    while (framesToDrain > 0) {
        const auto frames = static_cast<size_t>(std::min<uint64_t>(framesToDrain, greatestBlock));
        framesToDrain -= frames;
        const Pair pair = Push(std::span(silence).first(frames * channels));
        if (!pair.output.empty()) {
            return pair;
        }
    }
    return {};
}

} // namespace Cli
