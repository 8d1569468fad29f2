// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/Expected.h"

namespace Preset {

/// The most that a preset's text may have, plain or inflated. A parser's tree of the shortest
/// elements takes 16 times its text, and a preset with all that this or a kindred product has takes
/// a thousandth of this.
inline constexpr uint64_t MaxTextBytes = 4ULL << 20;

/// Whether a file that starts with `bytes` is a compressed preset: a little-endian 32-bit length,
/// then a zlib stream. A plain one starts with text.
bool IsCompressedPreset(Util::ByteSpan bytes);

/// The XML of a compressed file's bytes. The length is the most that inflating may give.
Util::Expected<Util::Bytes> InflatePreset(Util::ByteSpan bytes);

/// Everything in the file, which is MaxTextBytes at most. The text of a failure distinguishes
/// opening and reading apart.
Util::Expected<Util::Bytes> ReadPresetBytes(const String& path);

/// The XML of the file, whichever form it has.
Util::Expected<Util::Bytes> ReadPresetText(const String& path);

} // namespace Preset
