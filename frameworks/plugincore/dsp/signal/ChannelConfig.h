// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>

namespace DSP {

/// Most channels of a layout; the limit of every per-channel table.
inline constexpr uint32_t MaxChannels = 24;

/// Codes of plain layouts, of 3 to MaxChannels channels without a meaning of their own.
inline constexpr uint32_t FirstPlainCode = 13;
inline constexpr uint32_t LastPlainCode = 34;

/// Number of channels of a layout code; 0 for a code that names none. [any]
uint32_t GetChannelCount(uint32_t channelConfig) noexcept;

/// Display name of a layout code; "?" for a code that names none. [any]
String GetChannelConfigName(uint32_t channelConfig);

} // namespace DSP
