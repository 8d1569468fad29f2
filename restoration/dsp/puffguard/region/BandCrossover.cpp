// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/region/BandCrossover.h"

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

void BandCrossover::Split(uint32_t frames, float* const* channels)
{
    split.Process(frames, channels);
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
    const std::span<const float> gains = GetGains(position, recording.GetFrames());
    for (uint32_t channel = 0; channel < recording.GetChannelCount(); ++channel) {
        const float* const change = processed.GetChannel(channel);
        float* const samples = recording.GetChannel(channel);
        for (std::size_t i = 0; i < gains.size(); ++i) {
            samples[i] += gains[i] * change[i];
        }
    }
}

} // namespace DSP
