// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/CleanText.h"

#include "frameworks/qobase/util/Utf8.h"

#include <string>
#include <string_view>

namespace Util {
namespace {

bool IsXmlCharacter(uint32_t code)
{
    const bool isControl = code < 0x20 && code != '\t' && code != '\n' && code != '\r';
    return !isControl && code != 0xFFFE && code != 0xFFFF;
}

} // namespace

String CleanText(const String& text)
{
    std::string result;
    std::string_view rest = text.View();
    while (!rest.empty()) {
        const auto character = Util::Utf8::Decode(rest);
        const bool mayStay = character && IsXmlCharacter(character->code);
        const std::size_t length = mayStay ? character->length : 1;
        result += mayStay ? rest.substr(0, length) : std::string_view("?");
        rest.remove_prefix(length);
    }
    return result;
}

} // namespace Util
