// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Wrapper {

/// Keeps the last of the input and gives it late by a delay, bit for bit what a bypass of the
/// module gives: samples that the module doesn't take count as 0.
class DelayedInput {
public:
    /// For delays of up to `newLongest` samples and reads of up to `longestRead` frames. Forgets
    /// what there was; without memory it throws, and nothing has changed. [setup]
    void SetFormat(uint32_t channels, uint32_t newLongest, uint32_t longestRead);

    /// In samples. [process]
    uint32_t GetDelay() const noexcept { return delay; }
    /// What is longer than the longest counts as that. Forgets the input. [process]
    void SetDelay(uint32_t samples) noexcept;
    /// Forgets the input: before it there was silence. [process]
    void Clear() noexcept;

    /// Takes in any number of frames of each channel, none of them null. [process]
    void Write(const float* const* channels, uint32_t frames) noexcept;
    /// What is due with the last `frames` of the input. [process]
    void Read(uint32_t channel, float* samples, uint32_t frames) const noexcept;

    uint32_t GetChannels() const noexcept { return static_cast<uint32_t>(rings.size()); } ///< [any]

private:
    std::vector<std::vector<float>> rings; // [channel][longest delay + longest read]
    size_t size = 1;                       // of each
    size_t end = 0;                        // place of the next frame
    uint32_t longest = 0;
    uint32_t delay = 0;
};

} // namespace Wrapper
