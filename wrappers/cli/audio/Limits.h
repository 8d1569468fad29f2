// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/BlockBuffers.h"

namespace Cli {

/// Rates of recordings, in Hz: those that the repair is made for. The module serves more, since a
/// host has no other way than to play at its own rate.
inline constexpr int LeastSampleRate = 8000;
inline constexpr int GreatestSampleRate = 192000;
inline constexpr int GreatestChannelCount = static_cast<int>(Wrapper::BlockBuffers::MaxChannels);

/// Host blocks in frames. The most that a block may hold keeps the repairs of one block far below
/// the number that the module keeps for reading.
inline constexpr int GreatestBlock = 65536;
inline constexpr int DefaultBlock = 4096;

/// At the edges of regions, in ms.
inline constexpr double GreatestFade = 10000;
inline constexpr double DefaultFade = 10;

} // namespace Cli
