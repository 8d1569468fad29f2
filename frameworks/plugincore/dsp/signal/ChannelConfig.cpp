// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/ChannelConfig.h"

#include <algorithm>
#include <array>

namespace DSP {
namespace {

struct NamedLayout {
    uint32_t code;
    uint32_t channels;
    const char* name;
};

constexpr std::array<NamedLayout, 18> NamedLayouts{{
    {0, 1, "Mono"},
    {1, 2, "Stereo"},
    {2, 2, "Mid-Side"},
    {3, 3, "LRC"},
    {4, 3, "LRS"},
    {5, 4, "LCRS"},
    {6, 4, "Quad"},
    {7, 5, "5.0"},
    {8, 6, "5.1"},
    {9, 7, "7.0"},
    {10, 7, "7.0 SDDS"},
    {11, 8, "7.1"},
    {12, 8, "7.1 SDDS"},
    {36, 3, "LCR"},
    {37, 6, "5.1"},
    {38, 6, "5.1 DTS"},
    {39, 6, "5.1 FILM"},
    {40, 8, "7.1 DTS"},
}};

constexpr uint32_t PlainCodeOffset = LastPlainCode - MaxChannels;

bool IsPlain(uint32_t code)
{
    return code >= FirstPlainCode && code <= LastPlainCode;
}

const NamedLayout* FindNamed(uint32_t code)
{
    const auto* found =
        std::find_if(NamedLayouts.begin(), NamedLayouts.end(), [code](const NamedLayout& layout) {
            return layout.code == code;
        });
    return found == NamedLayouts.end() ? nullptr : found;
}

} // namespace

uint32_t GetChannelCount(uint32_t channelConfig) noexcept
{
    if (IsPlain(channelConfig)) {
        return channelConfig - PlainCodeOffset;
    }
    const NamedLayout* layout = FindNamed(channelConfig);
    return layout != nullptr ? layout->channels : 0;
}

String GetChannelConfigName(uint32_t channelConfig)
{
    if (IsPlain(channelConfig)) {
        const uint32_t channels = channelConfig - PlainCodeOffset;
        // Each call fills one of the two places.
        return String("%1->%1").arg(channels).arg(channels);
    }
    const NamedLayout* layout = FindNamed(channelConfig);
    return String(layout != nullptr ? layout->name : "?");
}

} // namespace DSP
