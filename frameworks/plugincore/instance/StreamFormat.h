// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>

/// What an instance takes when it is created with a rate or layout that can't be served.
inline constexpr float FallbackSampleRate = 44100.0F;
inline constexpr uint32_t FallbackChannelConfig = 0; // the only layout that every host has room for

/// Whether the elements can be built for a rate, in Hz. The bounds lie far outside of what audio
/// has; they keep a nonsensical number from asking for all memory or for frames of no length.
bool IsServableRate(float sampleRate) noexcept;

/// Whether a layout code names at least one channel.
bool IsServableLayout(uint32_t channelConfig) noexcept;
