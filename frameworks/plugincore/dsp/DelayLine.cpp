// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/DelayLine.h"

#include <algorithm>
#include <cassert>

namespace DSP {
namespace {

constexpr uint32_t FadeFrames = 128;

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
    const auto size = static_cast<uint32_t>(ring.size());
    for (uint32_t i = fading; i < frames; ++i) {
        ring[writeIndex] = input != nullptr ? input[i] : 0.0F;
        output[i] = ReadBack(length);
        writeIndex = writeIndex + 1 == size ? 0 : writeIndex + 1;
    }
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
