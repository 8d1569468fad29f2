// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/BypassFader.h"

#include <algorithm>

namespace DSP {

BypassFader::BypassFader(uint32_t newChannelCount, uint32_t newLengthFrames)
    : channelCount(newChannelCount)
    , lengthFrames(std::max(newLengthFrames, 1U))
{
}

void BypassFader::SetLength(uint32_t newLengthFrames) noexcept
{
    const uint32_t longer = std::max(newLengthFrames, 1U);
    // All dry stays all dry, whatever the length.
    position = position == lengthFrames ? longer : std::min(position, longer);
    lengthFrames = longer;
}

void BypassFader::Process(uint32_t frames, const float* const* dry, float* const* wet) noexcept
{
    uint32_t end = position;
    for (uint32_t channel = 0; channel < channelCount; ++channel) {
        if (wet[channel] == nullptr) {
            continue;
        }
        uint32_t at = position;
        for (uint32_t i = 0; i < frames; ++i) {
            if (targetDry && at < lengthFrames) {
                ++at;
            } else if (!targetDry && at > 0) {
                --at;
            }
            if (at == lengthFrames) {
                wet[channel][i] = dry[channel][i];
            } else if (at != 0) {
                const float gain = static_cast<float>(at) / static_cast<float>(lengthFrames);
                wet[channel][i] += (dry[channel][i] - wet[channel][i]) * gain;
            }
        }
        end = at;
    }
    position = end;
}

} // namespace DSP
