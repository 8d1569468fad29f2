// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/region/BandCrossover.h"

#include <algorithm>

namespace DSP {

BandCrossover::BandCrossover(const Region& newRegion, const Setup& setup)
    : RegionCrossover(newRegion)
    , split(setup.pool)
    , mask({setup.pool,
            newRegion,
            setup.channels,
            setup.sampleRate,
            setup.sampleRate * setup.fadeMilliseconds * 0.001})
    , lines(setup.channels, DelayLine(setup.elementLatency))
    , unchanged(setup.channels)
{
    for (DelayLine& line : lines) {
        line.SetLength(setup.elementLatency);
    }
    split.Configure({setup.channels,
                     setup.sampleRate,
                     newRegion.GetSelectivity(setup.sampleRate),
                     newRegion.GetLowHz(),
                     newRegion.GetHighHz()});
}

// The band rises slowly from nothing at first, which the element would take for the recording's
// noise floor for two seconds. So it begins as a recording does, at once: where there is something
// before the first frame, when all of it is in, else with the recording.
void BandCrossover::Begin(int64_t position)
{
    silentFrames = split.GetLatency() * (position > 0 ? 2 : 1);
}

void BandCrossover::SilenceStart(uint32_t frames, float* const* channels)
{
    const uint32_t count = std::min(frames, silentFrames);
    silentFrames -= count;
    for (std::size_t channel = 0; channel < lines.size(); ++channel) {
        std::fill_n(channels[channel], count, 0.0F);
    }
}

void BandCrossover::Split(uint32_t frames, float* const* channels)
{
    split.Process(frames, channels);
    SilenceStart(frames, channels);
    for (std::size_t channel = 0; channel < lines.size(); ++channel) {
        unchanged[channel].resize(frames);
        lines[channel].Process(channels[channel], unchanged[channel].data(), frames);
    }
}

void BandCrossover::Take(int64_t position, uint32_t frames, float* const* channels)
{
    for (std::size_t channel = 0; channel < unchanged.size(); ++channel) {
        for (uint32_t frame = 0; frame < frames; ++frame) {
            channels[channel][frame] -= unchanged[channel][frame];
        }
    }
    mask.Process(position + mask.GetLatency(), frames, channels);
}

void BandCrossover::Join(int64_t position,
                         const MultichannelBufferView<float>& processed,
                         const MultichannelBufferView<float>& recording)
{
    const std::span<const float> shares = GetGains(position, recording.GetFrames());
    for (uint32_t channel = 0; channel < recording.GetChannelCount(); ++channel) {
        const float* const change = processed.GetChannel(channel);
        float* const samples = recording.GetChannel(channel);
        for (std::size_t i = 0; i < shares.size(); ++i) {
            samples[i] += shares[i] * change[i];
        }
    }
}

} // namespace DSP
