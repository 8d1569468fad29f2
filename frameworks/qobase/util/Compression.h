// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"

#include <optional>

namespace Util {

/// One zlib stream; empty on failure. [ui]
Bytes Deflate(ByteSpan bytes);

/// What one zlib stream holds. Empty when it is damaged or cut off, or holds more than `maxBytes`;
/// memory is taken as bytes arrive. Bytes behind the stream's end are ignored. [ui]
std::optional<Bytes> Inflate(ByteSpan bytes, uint64_t maxBytes = MaxClaimedBytes);

} // namespace Util
