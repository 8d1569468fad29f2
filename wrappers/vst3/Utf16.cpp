// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Utf16.h"

#include "wrappers/common/Utf8.h"

#include <cstddef>

namespace Vst3 {

namespace {

constexpr uint32_t FirstSupplementary = 0x10000;
constexpr uint32_t HighSurrogate = 0xD800;
constexpr uint32_t LowSurrogate = 0xDC00;
constexpr uint32_t AfterSurrogates = 0xE000;
constexpr uint32_t SurrogateBits = 10;

} // namespace

void CopyUtf16(std::string_view text, std::span<int16_t> field)
{
    size_t length = 0;
    while (!text.empty()) {
        const uint32_t character = Wrapper::Utf8::Take(text);
        const size_t needed = character < FirstSupplementary ? 1 : 2;
        if (length + needed >= field.size()) {
            break;
        }
        if (needed == 1) {
            field[length] = static_cast<int16_t>(character);
        } else {
            const uint32_t offset = character - FirstSupplementary;
            field[length] = static_cast<int16_t>(HighSurrogate | offset >> SurrogateBits);
            field[length + 1] = static_cast<int16_t>(LowSurrogate | (offset & 0x3FFU));
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
        if (character >= HighSurrogate && character < LowSurrogate && next >= LowSurrogate &&
            next < AfterSurrogates) {
            character = FirstSupplementary + ((character - HighSurrogate) << SurrogateBits) +
                        (next - LowSurrogate);
            ++text;
        }
        Wrapper::Utf8::Append(character, result);
    }
    return result;
}

} // namespace Vst3
