// SPDX-License-Identifier: ISC
#pragma once

#include <clap/stream.h>

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace Clap {

/// Everything up to the stream's end, in as many calls as the host makes of it. None when reading
/// fails, or when more comes than any session keeps. [main]
std::optional<std::vector<uint8_t>> ReadAll(const clap_istream_t& stream);

/// False when the host doesn't take everything. [main]
bool WriteAll(const clap_ostream_t& stream, std::span<const uint8_t> bytes);

} // namespace Clap
