// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/StreamFormat.h"

#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"

namespace {

constexpr float LowestRate = 500.0F;
constexpr float HighestRate = 1.5e6F;

} // namespace

bool IsServableRate(float sampleRate) noexcept
{
    // Written so that a NaN fails.
    return sampleRate >= LowestRate && sampleRate <= HighestRate;
}

bool IsServableLayout(uint32_t channelConfig) noexcept
{
    return DSP::GetChannelCount(channelConfig) != 0;
}
