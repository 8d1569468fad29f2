// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/BlockBuffers.h"

namespace Cli {

inline constexpr int leastSampleRate = 8000;      ///< Hz
inline constexpr int greatestSampleRate = 192000; ///< Hz
inline constexpr int greatestChannelCount = static_cast<int>(Wrapper::BlockBuffers::MaxChannels);

/// Host blocks in frames. The most that a block may hold keeps the repairs of one block far below
/// the number that the module keeps for reading.
inline constexpr int greatestBlock = 65536;
inline constexpr int defaultBlock = 4096;

} // namespace Cli
