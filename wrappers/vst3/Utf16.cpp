// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Utf16.h"

#include <array>
#include <cstddef>

namespace Vst3 {

namespace {

constexpr uint32_t replacement = 0xFFFD;
constexpr uint32_t firstSupplementary = 0x10000;
constexpr uint32_t lastCharacter = 0x10FFFF;
constexpr uint32_t highSurrogate = 0xD800;
constexpr uint32_t lowSurrogate = 0xDC00;
constexpr uint32_t afterSurrogates = 0xE000;
constexpr uint32_t surrogateBits = 10;

bool IsSurrogate(uint32_t character)
{
    return character >= highSurrogate && character < afterSurrogates;
}

// How many bytes follow a first one, and the smallest character that needs so many.
struct Form {
    uint32_t mask;
    uint32_t head;
    size_t following;
    uint32_t smallest;
};
constexpr std::array<Form, 4> forms = {{
    {0x80, 0x00, 0, 0},
    {0xE0, 0xC0, 1, 0x80},
    {0xF0, 0xE0, 2, 0x800},
    {0xF8, 0xF0, 3, firstSupplementary},
}};

uint32_t ByteAt(std::string_view text, size_t index)
{
    return static_cast<unsigned char>(text[index]);
}

// Takes one character, or one byte that begins none, off the front.
uint32_t TakeCharacter(std::string_view& text)
{
    const uint32_t first = ByteAt(text, 0);
    for (const Form& form : forms) {
        if ((first & form.mask) != form.head || text.size() <= form.following) {
            continue;
        }
        uint32_t character = first & ~form.mask;
        bool isValid = true;
        for (size_t i = 1; i <= form.following; ++i) {
            isValid = isValid && (ByteAt(text, i) & 0xC0U) == 0x80U;
            character = character << 6U | (ByteAt(text, i) & 0x3FU);
        }
        if (isValid && character >= form.smallest && character <= lastCharacter &&
            !IsSurrogate(character)) {
            text.remove_prefix(form.following + 1);
            return character;
        }
    }
    text.remove_prefix(1);
    return replacement;
}

void AppendUtf8(uint32_t character, std::string& text)
{
    size_t following = 0;
    while (following < 3 && character >= forms[following + 1].smallest) {
        ++following;
    }
    const auto shift = static_cast<uint32_t>(6 * following);
    text += static_cast<char>(forms[following].head | character >> shift);
    for (uint32_t rest = shift; rest > 0; rest -= 6) {
        text += static_cast<char>(0x80U | (character >> (rest - 6) & 0x3FU));
    }
}

} // namespace

void CopyUtf16(std::string_view text, std::span<int16_t> field)
{
    size_t length = 0;
    while (!text.empty()) {
        const uint32_t character = TakeCharacter(text);
        const size_t needed = character < firstSupplementary ? 1 : 2;
        if (length + needed >= field.size()) {
            break;
        }
        if (needed == 1) {
            field[length] = static_cast<int16_t>(character);
        } else {
            const uint32_t offset = character - firstSupplementary;
            field[length] = static_cast<int16_t>(highSurrogate | offset >> surrogateBits);
            field[length + 1] = static_cast<int16_t>(lowSurrogate | (offset & 0x3FFU));
        }
        length += needed;
    }
    field[length] = 0;
}

std::string FromUtf16(const int16_t* text)
{
    std::string result;
    for (; text != nullptr && *text != 0; ++text) {
        uint32_t character = static_cast<uint16_t>(text[0]);
        const uint32_t next = static_cast<uint16_t>(text[1]);
        if (character >= highSurrogate && character < lowSurrogate && next >= lowSurrogate &&
            next < afterSurrogates) {
            character = firstSupplementary + ((character - highSurrogate) << surrogateBits) +
                        (next - lowSurrogate);
            ++text;
        }
        AppendUtf8(IsSurrogate(character) ? replacement : character, result);
    }
    return result;
}

} // namespace Vst3
