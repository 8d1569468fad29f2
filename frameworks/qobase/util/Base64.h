// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/String.h"

#include <optional>

namespace Util {

/// The bytes in the usual alphabet (A-Z a-z 0-9 + /), padded by "=", without line breaks. [any]
String EncodeBase64(ByteSpan bytes);

/// Empty when the text is no Base64: a character outside the alphabet, a wrong length or padding.
/// An empty text gives no bytes. [any]
std::optional<Bytes> DecodeBase64(const String& text);

} // namespace Util
