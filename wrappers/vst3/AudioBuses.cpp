// SPDX-License-Identifier: ISC
#include "wrappers/vst3/AudioBuses.h"

#include <algorithm>

namespace Vst3 {

namespace {

constexpr uint32_t ChannelsOfBitset = 64;

uint32_t ChannelCountOf(const v3_audio_bus_buffers& bus)
{
    return bus.channel_buffers_32 != nullptr && bus.num_channels > 0
               ? static_cast<uint32_t>(bus.num_channels)
               : 0;
}

bool IsSilent(const float* samples, uint32_t frames)
{
    return std::all_of(samples, samples + frames, [](float sample) { return sample == 0.0F; });
}

void FinishBus(v3_audio_bus_buffers& bus, uint32_t written, uint32_t frames)
{
    bus.channel_silence_bitset = 0;
    for (uint32_t channel = 0; channel < ChannelCountOf(bus); ++channel) {
        float* const samples = bus.channel_buffers_32[channel];
        if (samples == nullptr) {
            continue;
        }
        if (channel >= written) {
            std::fill_n(samples, frames, 0.0F);
        }
        if (channel < ChannelsOfBitset && IsSilent(samples, frames)) {
            bus.channel_silence_bitset |= uint64_t{1} << channel;
        }
    }
}

} // namespace

// The flags of silent inputs are passed over: those channels hold zeros as well, and a host that
// leaves a flag standing loses no audio that way.
std::span<float* const> FirstBus(const v3_audio_bus_buffers* buses, int32_t count) noexcept
{
    if (buses == nullptr || count <= 0) {
        return {};
    }
    return {buses[0].channel_buffers_32, ChannelCountOf(buses[0])};
}

void FinishOutputs(v3_audio_bus_buffers* buses,
                   int32_t count,
                   uint32_t channels,
                   uint32_t frames) noexcept
{
    for (int32_t index = 0; buses != nullptr && frames > 0 && index < count; ++index) {
        FinishBus(buses[index], index == 0 ? channels : 0, frames);
    }
}

} // namespace Vst3
