// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>
#include <optional>

namespace Util {

/// Numbers as text and back, the same in every locale. Reading takes the whole text and nothing
/// else: no blanks, no "+", no "nan" or "inf", nothing outside the type's range. [any]

/// Shortest of 8 significant digits, or of 9 where 8 would not read back as the same value.
String FormatFloat(float value);
std::optional<float> ParseFloat(const String& text);
/// The same, but what lies outside the type's range counts as its nearer end, or as 0.
std::optional<float> ParseFloatClamped(const String& text);
std::optional<uint32_t> ParseUInt(const String& text);
std::optional<int32_t> ParseInt(const String& text);

} // namespace Util
