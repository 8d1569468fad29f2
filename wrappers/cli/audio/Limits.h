// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/BlockBuffers.h"

namespace Cli {

inline constexpr int LeastSampleRate = 8000;      ///< Hz
inline constexpr int GreatestSampleRate = 192000; ///< Hz
inline constexpr int GreatestChannelCount = static_cast<int>(Wrapper::BlockBuffers::MaxChannels);

/// Host blocks in frames. The most that a block may hold keeps the repairs of one block far below
/// the number that the module keeps for reading.
inline constexpr int GreatestBlock = 65536;
inline constexpr int DefaultBlock = 4096;

} // namespace Cli
