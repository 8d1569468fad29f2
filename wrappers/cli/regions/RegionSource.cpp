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
    , keptFrames(newKeptFrames)
    , scratch(FramesAtOnce * channelCount)
{
    Restart();
}

void RegionSource::Restart()
{
    input.Begin();
    kept.clear();
    first = 0;
}

void RegionSource::ReadOn()
{
    const size_t held = kept.size() / channelCount;
    // Seldom, so that what stays is seldom moved.
    if (held > 2 * keptFrames) {
        const size_t dropped = held - keptFrames;
        kept.erase(kept.begin(),
                   kept.begin() + static_cast<std::ptrdiff_t>(dropped * channelCount));
        first += static_cast<int64_t>(dropped);
    }
    const size_t count = input.Read(scratch) * channelCount;
    if (count == 0) {
        throw FileError("has become shorter while it was read");
    }
    for (const double sample : std::span(scratch).first(count)) {
        kept.push_back(static_cast<float>(sample));
    }
}

void RegionSource::Read(int64_t position, uint32_t frames, float* const* channels)
{
    if (position < first) {
        Restart();
    }
    while (input.GetPosition() < position + frames) {
        ReadOn();
    }
    const auto begin = static_cast<size_t>(position - first) * channelCount;
    for (size_t channel = 0; channel < channelCount; ++channel) {
        const float* sample = kept.data() + begin + channel;
        for (uint32_t frame = 0; frame < frames; ++frame, sample += channelCount) {
            channels[channel][frame] = *sample;
        }
    }
}

} // namespace Cli
