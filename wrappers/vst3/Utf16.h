// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Vst3 {

/// Writes UTF-8 text as UTF-16, cut to whole characters that fit, and terminated. What is no UTF-8
/// becomes U+FFFD.
void CopyUtf16(std::string_view text, std::span<int16_t> field);

/// Terminated UTF-16 as UTF-8; null is empty. Lone surrogates become U+FFFD.
std::string FromUtf16(const int16_t* text);

} // namespace Vst3
