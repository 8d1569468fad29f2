// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/offline/RegionCrossover.h"

namespace DSP {

void RegionCrossover::Join(int64_t position,
                           const MultichannelBufferView<float>& processed,
                           const MultichannelBufferView<float>& recording)
{
    const std::span<const float> weights = GetGains(position, recording.GetFrames());
    for (uint32_t channel = 0; channel < recording.GetChannelCount(); ++channel) {
        const float* const wet = processed.GetChannel(channel);
        float* const samples = recording.GetChannel(channel);
        for (std::size_t i = 0; i < weights.size(); ++i) {
            samples[i] = Mix(samples[i], wet[i], weights[i]);
        }
    }
}

std::span<const float> RegionCrossover::GetGains(int64_t position, uint32_t frames)
{
    gains.resize(frames);
    fade.Fill(position, gains);
    return gains;
}

} // namespace DSP
