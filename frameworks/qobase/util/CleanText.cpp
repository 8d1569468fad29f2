// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/CleanText.h"

#include <string>
#include <string_view>

namespace Util {
namespace {

// What the first byte of a character says: how many bytes, and the least number that needs as many
// (a smaller one in so many bytes is a forgery of another character).
struct Lead {
    std::size_t length = 0; // 0: no first byte
    uint32_t bits = 0;
    uint32_t least = 0;
};

Lead GetLead(uint8_t byte)
{
    if (byte < 0x80) {
        return {1, byte, 0};
    }
    if ((byte & 0xE0U) == 0xC0) {
        return {2, byte & 0x1FU, 0x80};
    }
    if ((byte & 0xF0U) == 0xE0) {
        return {3, byte & 0x0FU, 0x800};
    }
    if ((byte & 0xF8U) == 0xF0) {
        return {4, byte & 0x07U, 0x10000};
    }
    return {};
}

bool IsXmlCharacter(uint32_t code)
{
    const bool isControl = code < 0x20 && code != '\t' && code != '\n' && code != '\r';
    const bool isSurrogate = code >= 0xD800 && code <= 0xDFFF;
    return !isControl && !isSurrogate && code != 0xFFFE && code != 0xFFFF && code <= 0x10FFFF;
}

// Bytes of the character in front, 0 when there is none that may stay.
std::size_t GetCharacterLength(std::string_view text)
{
    const Lead lead = GetLead(static_cast<uint8_t>(text.front()));
    if (lead.length == 0 || lead.length > text.size()) {
        return 0;
    }
    uint32_t code = lead.bits;
    for (std::size_t i = 1; i < lead.length; ++i) {
        const auto byte = static_cast<uint8_t>(text[i]);
        if ((byte & 0xC0U) != 0x80) {
            return 0;
        }
        code = code << 6 | (byte & 0x3FU);
    }
    return code >= lead.least && IsXmlCharacter(code) ? lead.length : 0;
}

} // namespace

String CleanText(const String& text)
{
    std::string result;
    std::string_view rest = text.View();
    while (!rest.empty()) {
        const std::size_t length = GetCharacterLength(rest);
        result += length == 0 ? std::string_view("?") : rest.substr(0, length);
        rest.remove_prefix(length == 0 ? 1 : length);
    }
    return result;
}

} // namespace Util
