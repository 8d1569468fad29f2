// SPDX-License-Identifier: ISC
#include "wrappers/common/Utf8.h"

#include <algorithm>
#include <array>

namespace Wrapper::Utf8 {

namespace {

// The first byte of a character, and the least number that needs so many bytes: a smaller one in as
// many would be a second spelling of another character.
struct Form {
    uint32_t mask;
    uint32_t head;
    uint32_t least;
};
constexpr std::array<Form, 4> Forms = {{
    {0x80, 0x00, 0x00},
    {0xE0, 0xC0, 0x80},
    {0xF0, 0xE0, 0x800},
    {0xF8, 0xF0, 0x10000},
}};
constexpr uint32_t LastCode = 0x10FFFF;

uint32_t ByteAt(std::string_view text, std::size_t index)
{
    return static_cast<uint8_t>(text[index]);
}

bool IsCode(uint32_t code)
{
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return code <= LastCode && !isSurrogate;
}

// Whether the byte goes on with a character.
bool Continues(uint32_t byte)
{
    return (byte & 0xC0U) == 0x80U;
}

// Bytes of a character by its first one; 0: none begins so.
std::size_t LengthFrom(uint32_t first)
{
    const auto* form = std::find_if(Forms.begin(), Forms.end(), [first](const Form& one) {
        return (first & one.mask) == one.head;
    });
    return form != Forms.end() ? static_cast<std::size_t>(form - Forms.begin()) + 1 : 0;
}

} // namespace

std::optional<Character> Decode(std::string_view text) noexcept
{
    const std::size_t length = text.empty() ? 0 : LengthFrom(ByteAt(text, 0));
    if (length == 0 || length > text.size()) {
        return std::nullopt;
    }
    const Form& form = Forms[length - 1];
    uint32_t code = ByteAt(text, 0) & ~form.mask;
    for (std::size_t i = 1; i < length; ++i) {
        if (!Continues(ByteAt(text, i))) {
            return std::nullopt;
        }
        code = code << 6U | (ByteAt(text, i) & 0x3FU);
    }
    return code >= form.least && IsCode(code) ? std::optional(Character{code, length})
                                              : std::nullopt;
}

uint32_t Take(std::string_view& text) noexcept
{
    const Character next = Decode(text).value_or(Character{Replacement, 1});
    text.remove_prefix(next.length);
    return next.code;
}

void Append(uint32_t code, std::string& text)
{
    const uint32_t known = IsCode(code) ? code : Replacement;
    std::size_t following = 0;
    while (following < 3 && known >= Forms[following + 1].least) {
        ++following;
    }
    const auto shift = static_cast<uint32_t>(6 * following);
    text += static_cast<char>(Forms[following].head | known >> shift);
    for (uint32_t rest = shift; rest > 0; rest -= 6) {
        text += static_cast<char>(0x80U | (known >> (rest - 6) & 0x3FU));
    }
}

std::string_view Cut(std::string_view text, std::size_t mostBytes) noexcept
{
    if (text.size() <= mostBytes) {
        return text;
    }
    std::size_t length = mostBytes;
    while (length > 0 && Continues(ByteAt(text, length))) {
        --length;
    }
    return text.substr(0, length);
}

std::size_t CountCharacters(std::string_view text) noexcept
{
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return !Continues(static_cast<uint8_t>(byte));
    }));
}

} // namespace Wrapper::Utf8
