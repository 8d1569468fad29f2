// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

namespace DSP {

/// Points at the samples `offset` frames into each of a block's channels, as many as there are
/// pointers; a null channel stays null. [process]
inline void PointInto(float* const* channels, uint32_t offset, std::span<float*> pointers) noexcept
{
    for (std::size_t channel = 0; channel < pointers.size(); ++channel) {
        float* const samples = channels[channel];
        pointers[channel] = samples != nullptr ? samples + offset : nullptr;
    }
}

/// Cuts a block of `frames` frames into pieces of at most `mostFrames`, at least 1, and calls
/// `run(begin, count)` for each, with the pointers at its samples. [process]
template <typename Run>
void RunInPieces(uint32_t frames,
                 uint32_t mostFrames,
                 float* const* channels,
                 std::span<float*> pointers,
                 const Run& run)
{
    for (uint32_t begin = 0; begin < frames;) {
        const uint32_t count = std::min(frames - begin, mostFrames);
        PointInto(channels, begin, pointers);
        run(begin, count);
        begin += count;
    }
}

} // namespace DSP
