// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <array>
#include <cstdint>
#include <optional>

namespace Util {

using Uuid = std::array<uint8_t, 16>;

/// A fresh random one (version 4). [setup]
Uuid MakeUuid();

/// "xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx" in lower-case hexadecimal, and back; empty for any other
/// text. Upper case is read too. [any]
String FormatUuid(const Uuid& uuid);
std::optional<Uuid> ParseUuid(const String& text);

} // namespace Util
