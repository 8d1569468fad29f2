// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Util::Utf8 {

struct Character {
    uint32_t code = 0;      ///< its number in Unicode
    std::size_t length = 0; ///< bytes, 1 to 4
};

/// The character at the front. None for an empty text, and where no well-formed character begins:
/// longer forms than needed, surrogates and numbers above U+10FFFF are none. [any]
std::optional<Character> Decode(std::string_view text) noexcept;

/// The first `mostBytes` bytes, without a character at their end that would be cut in two. [any]
std::string_view Cut(std::string_view text, std::size_t mostBytes) noexcept;

} // namespace Util::Utf8
