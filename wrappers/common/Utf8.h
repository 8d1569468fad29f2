// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Wrapper::Utf8 {

/// What stands for a byte that is part of no character: U+FFFD.
inline constexpr uint32_t Replacement = 0xFFFD;

struct Character {
    uint32_t code = 0;      ///< its number in Unicode
    std::size_t length = 0; ///< bytes, 1 to 4
};

/// The character at the front. None for an empty text, and where no well-formed character begins:
/// longer forms than needed, surrogates and numbers above U+10FFFF are none. [any]
std::optional<Character> Decode(std::string_view text) noexcept;

/// Takes one character off the front of a text that isn't empty and gives its number; or one byte
/// that begins none, for which it gives the replacement. [any]
uint32_t Take(std::string_view& text) noexcept;

/// Adds a character to a text; a surrogate, or a number above U+10FFFF, as the replacement. [any]
void Append(uint32_t code, std::string& text);

/// The first `mostBytes` bytes, without a character at their end that would be cut in two. [any]
std::string_view Cut(std::string_view text, std::size_t mostBytes) noexcept;

/// The number of characters of a well-formed text. [any]
std::size_t CountCharacters(std::string_view text) noexcept;

} // namespace Wrapper::Utf8
