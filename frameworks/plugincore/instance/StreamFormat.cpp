// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/StreamFormat.h"

#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"
#include "frameworks/plugincore/entry/PluginCoreCallback.h"

static_assert(DSP::MaxChannels == PLUGIN_CORE_MAX_CHANNELS);
static_assert(DSP::FirstPlainCode == ChannelConfigPlain3);
static_assert(DSP::LastPlainCode == ChannelConfigPlain24);

namespace {

constexpr uint32_t FallbackLayout = ChannelConfigMono; // the only one that every host has room for

bool IsServableRate(float sampleRate)
{
    // Written so that a NaN fails.
    return sampleRate >= PLUGIN_CORE_LOWEST_RATE && sampleRate <= PLUGIN_CORE_HIGHEST_RATE;
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
    return {IsServableRate(sampleRate) ? sampleRate : PLUGIN_CORE_FALLBACK_RATE,
            IsServableLayout(channelConfig) ? channelConfig : FallbackLayout};
}
