// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

namespace Cli {

/// What to do with the first samples of an effect that answers late.
enum class LatencyMode {
    Trim, ///< leave them out: output frame n belongs to input frame n
    Keep  ///< hand them on: output frame n belongs to input frame n - latency
};

/// Runs samples through an effect with latency and pairs each output sample with the input sample
/// that it belongs to.
///
/// The effect works in single precision. Where it hands a sample back unchanged, the output is the
/// input to the last bit, and elsewhere it is the input plus the effect's change, so that inputs of
/// more than 24 bits keep their low bits.
class Alignment {
public:
    /// Processes a block in place, one pointer a channel.
    using Effect = std::function<void(float** channels, uint32_t frames)>;

    /// A block of pairs, interleaved, full scale 1.0; both have the same length.
    struct Pair {
        std::span<double> input;
        std::span<double> output;
    };

    Alignment(
        size_t channels, size_t greatestBlock, uint32_t latency, LatencyMode mode, Effect effect);

    /// Takes up to `greatestBlock` frames of interleaved samples; the result is valid until the
    /// next call and may be empty while the latency fills.
    Pair Push(std::span<const double> samples);

    /// Takes silence instead, to bring out the rest: returns an empty pair when all frames that
    /// were pushed have come out.
    Pair Drain();

private:
    void SplitChannels(std::span<const double> samples, size_t frames);
    void DelayInput(std::span<const double> samples);
    void MakeOutput(size_t frames);

    size_t channels;
    size_t greatestBlock;
    Effect effect;
    std::vector<double> delayLine; // the last `latency` frames of input, interleaved, a ring
    size_t delayPosition = 0;      // of its oldest sample
    uint64_t framesToSkip;
    uint64_t framesToDrain;
    std::vector<float> block;
    std::vector<float*> channelPointers;
    std::vector<double> inputs;
    std::vector<double> outputs;
    std::vector<double> silence;
};

} // namespace Cli
