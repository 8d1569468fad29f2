// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/DelayLine.h"

#include <algorithm>
#include <array>
#include <cassert>

namespace DSP {
namespace {

constexpr uint32_t FadeFrames = 128;
constexpr uint32_t PieceFrames = 256;

} // namespace

DelayLine::DelayLine(uint32_t maxLength)
    : ring(std::size_t{maxLength} + 1, 0.0F)
{
}

void DelayLine::SetLength(uint32_t newLength) noexcept
{
    assert(newLength <= GetMaxLength());
    length = newLength;
    fadeFramesLeft = 0;
}

void DelayLine::FadeToLength(uint32_t newLength) noexcept
{
    // A fade that is under way ends first; the wish is repeated at each block.
    if (newLength == length || fadeFramesLeft != 0) {
        return;
    }
    const uint32_t former = length;
    SetLength(newLength);
    if (inUse) {
        formerLength = former;
        fadeFramesLeft = FadeFrames;
    }
}

void DelayLine::Clear() noexcept
{
    std::fill(ring.begin(), ring.end(), 0.0F);
    writeIndex = 0;
    fadeFramesLeft = 0;
    inUse = false;
}

float DelayLine::ReadBack(uint32_t samples) const noexcept
{
    const auto size = static_cast<uint32_t>(ring.size());
    return ring[writeIndex >= samples ? writeIndex - samples : writeIndex + size - samples];
}

void DelayLine::Process(const float* input, float* output, uint32_t frames) noexcept
{
    inUse = true;
    const uint32_t fading = std::min(frames, fadeFramesLeft);
    ProcessFading(input, output, fading);
    for (uint32_t done = fading; done < frames;) {
        done +=
            ProcessPiece(input != nullptr ? input + done : nullptr, output + done, frames - done);
    }
}

uint32_t DelayLine::ProcessPiece(const float* input, float* output, uint32_t mostFrames) noexcept
{
    const auto size = static_cast<uint32_t>(ring.size());
    const uint32_t readIndex =
        writeIndex >= length ? writeIndex - length : writeIndex + size - length;
    uint32_t frames = std::min({mostFrames, PieceFrames, size - writeIndex, size - readIndex});
    // The output may take the input's place.
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written below
    std::array<float, PieceFrames> arriving;
    if (input != nullptr) {
        std::copy_n(input, frames, arriving.data());
    } else {
        std::fill_n(arriving.data(), frames, 0.0F);
    }
    // Nothing is read that the same piece writes, unless all of it goes straight through.
    if (length == 0) {
        std::copy_n(arriving.data(), frames, output);
    } else {
        frames = std::min(frames, length);
        std::copy_n(ring.data() + readIndex, frames, output);
    }
    std::copy_n(arriving.data(), frames, ring.data() + writeIndex);
    writeIndex = writeIndex + frames == size ? 0 : writeIndex + frames;
    return frames;
}

void DelayLine::ProcessFading(const float* input, float* output, uint32_t frames) noexcept
{
    const auto size = static_cast<uint32_t>(ring.size());
    for (uint32_t i = 0; i < frames; ++i) {
        ring[writeIndex] = input != nullptr ? input[i] : 0.0F;
        --fadeFramesLeft;
        const float gain = static_cast<float>(FadeFrames - fadeFramesLeft) * (1.0F / FadeFrames);
        const float former = ReadBack(formerLength);
        output[i] = former + (ReadBack(length) - former) * gain;
        writeIndex = writeIndex + 1 == size ? 0 : writeIndex + 1;
    }
}

} // namespace DSP
