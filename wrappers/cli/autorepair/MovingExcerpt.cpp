// SPDX-License-Identifier: ISC
#include "wrappers/cli/autorepair/MovingExcerpt.h"

#include <algorithm>

namespace Cli {

MovingExcerpt::MovingExcerpt(RepeatedInput& newInput, size_t newFramesAtOnce)
    : input(newInput)
    , channels(static_cast<size_t>(newInput.GetDescription().GetChannels()))
    , framesAtOnce(newFramesAtOnce)
{
    input.Begin();
}

void MovingExcerpt::ReadOn()
{
    const size_t former = samples.size();
    const size_t wanted = framesAtOnce * channels;
    samples.resize(former + wanted);
    const size_t count = input.Read(std::span(samples).subspan(former)) * channels;
    samples.resize(former + count);
    hasEnded = count < wanted;
}

AutoRepair::Excerpt MovingExcerpt::Cover(const AutoRepair::Reach& reach)
{
    if (reach.first > input.GetPosition() && input.SkipTo(reach.first)) {
        samples.clear();
        first = reach.first;
    }
    while (!hasEnded && input.GetPosition() < reach.end) {
        const int64_t held = input.GetPosition() - first;
        const int64_t unused = std::clamp<int64_t>(reach.first - first, 0, held);
        samples.erase(samples.begin(),
                      samples.begin() + unused * static_cast<std::ptrdiff_t>(channels));
        first += unused;
        ReadOn();
    }
    return {first, samples};
}

} // namespace Cli
