// SPDX-License-Identifier: ISC
#pragma once

#include <travesty/bstream.h>

#include <cstdint>
#include <span>
#include <vector>

namespace Vst3 {

/// All bytes from the stream's place to its end, however few it gives at a time. Empty for a null
/// stream, and for one that is longer than any state.
std::vector<uint8_t> ReadAll(v3_bstream** stream);

/// False when the stream doesn't take them all.
bool WriteAll(v3_bstream** stream, std::span<const uint8_t> bytes);

} // namespace Vst3
