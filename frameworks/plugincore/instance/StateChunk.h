// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <optional>
#include <span>

/// The form in which a host keeps a saved state: the length of the text as uint32, little-endian,
/// then the text as one zlib stream. [ui]
namespace StateChunk {

/// The stream; empty when compressing fails.
Util::Bytes CompressText(const String& text);

/// Bytes of the chunk for this text. Compresses, as writing does again.
uint32_t GetChunkSizeOfText(const String& text);

/// Writes the chunk, or as much of it as there is place for. True when it takes the place exactly.
bool WriteText(const String& text, std::span<uint8_t> chunk);

/// The text of a chunk. Empty when the chunk has no length, claims more than 64 MiB, is damaged or
/// cut off, or holds more than it claims; it may hold less.
std::optional<Util::Bytes> ReadText(Util::ByteSpan chunk);

} // namespace StateChunk
