// SPDX-License-Identifier: ISC
#include "wrappers/cli/regions/RegionSource.h"

#include "wrappers/cli/files/FileError.h"

#include <algorithm>

namespace Cli {

namespace {

constexpr size_t FramesAtOnce = 4096;

} // namespace

RegionSource::RegionSource(RepeatedInput& newInput, size_t newKeptFrames)
    : input(newInput)
    , channelCount(static_cast<size_t>(newInput.GetDescription().GetChannels()))
    , keptFrames(std::max(newKeptFrames, 2 * FramesAtOnce))
    , kept(keptFrames * channelCount)
    , scratch(FramesAtOnce * channelCount)
{
    input.Begin();
}

void RegionSource::ReadOn()
{
    const auto first = static_cast<size_t>(input.GetPosition());
    const size_t count = input.Read(scratch);
    if (count == 0) {
        throw FileError("has become shorter while it was read");
    }
    for (size_t frame = 0; frame < count; ++frame) {
        float* const target = kept.data() + (first + frame) % keptFrames * channelCount;
        const double* const samples = scratch.data() + frame * channelCount;
        for (size_t channel = 0; channel < channelCount; ++channel) {
            target[channel] = static_cast<float>(samples[channel]);
        }
    }
}

void RegionSource::CopyOut(int64_t position,
                           size_t frames,
                           size_t offset,
                           float* const* channels) const
{
    for (size_t frame = 0; frame < frames; ++frame) {
        const size_t place = (static_cast<size_t>(position) + frame) % keptFrames;
        const float* const samples = kept.data() + place * channelCount;
        for (size_t channel = 0; channel < channelCount; ++channel) {
            channels[channel][offset + frame] = samples[channel];
        }
    }
}

void RegionSource::Read(int64_t position, uint32_t frames, float* const* channels)
{
    if (position < input.GetPosition() - static_cast<int64_t>(keptFrames)) {
        input.Begin();
    }
    // Piece by piece, since there may be more of them than are kept.
    for (size_t done = 0; done < frames;) {
        const auto begin = position + static_cast<int64_t>(done);
        const size_t count = std::min(frames - done, FramesAtOnce);
        while (input.GetPosition() < begin + static_cast<int64_t>(count)) {
            ReadOn();
        }
        CopyOut(begin, count, done, channels);
        done += count;
    }
}

} // namespace Cli
