// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace Util {

/// A run of bytes that is owned, and one that isn't.
using Bytes = std::vector<uint8_t>;
using ByteSpan = std::span<const uint8_t>;

/// Most bytes that a length read from a file or a chunk may claim, and most that inflating may
/// give: 64 MiB.
inline constexpr uint64_t MaxClaimedBytes = 64ULL << 20;

} // namespace Util
