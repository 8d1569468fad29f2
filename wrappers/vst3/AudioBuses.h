// SPDX-License-Identifier: ISC
#pragma once

#include <travesty/audio_processor.h>

#include <cstdint>
#include <span>

namespace Vst3 {

/// The memory of the first bus by channel, as far as the host gives some. [process]
std::span<float* const> FirstBus(const v3_audio_bus_buffers* buses, int32_t count) noexcept;

/// Clears the channels that the effect hasn't written, those above `channels` in the first bus and
/// all of further ones, and marks each channel that is silent. [process]
void FinishOutputs(v3_audio_bus_buffers* buses,
                   int32_t count,
                   uint32_t channels,
                   uint32_t frames) noexcept;

} // namespace Vst3
