// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>

namespace DSP {

/// Most channels of a layout; the limit of every per-channel table.
inline constexpr uint32_t MaxChannels = 24;

/// Number of channels of a layout code; 0 for a code that names none. [any]
uint32_t GetChannelCount(uint32_t channelConfig) noexcept;

/// Display name of a layout code; "?" for a code that names none. [any]
String GetChannelConfigName(uint32_t channelConfig);

} // namespace DSP
