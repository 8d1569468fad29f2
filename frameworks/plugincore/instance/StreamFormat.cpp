// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/StreamFormat.h"

#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"

namespace {

constexpr float LowestRate = 500.0F;
constexpr float HighestRate = 1.5e6F;

constexpr float FallbackRate = 44100.0F;
constexpr uint32_t FallbackLayout = 0; // mono, the only one that every host has room for

bool IsServableRate(float sampleRate)
{
    // Written so that a NaN fails.
    return sampleRate >= LowestRate && sampleRate <= HighestRate;
}

bool IsServableLayout(uint32_t channelConfig)
{
    return DSP::GetChannelCount(channelConfig) != 0;
}

} // namespace

bool StreamFormat::IsServable() const noexcept
{
    return IsServableRate(sampleRate) && IsServableLayout(channelConfig);
}

StreamFormat StreamFormat::WithFallbacks() const noexcept
{
    return {IsServableRate(sampleRate) ? sampleRate : FallbackRate,
            IsServableLayout(channelConfig) ? channelConfig : FallbackLayout};
}
