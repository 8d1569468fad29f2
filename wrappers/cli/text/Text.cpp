// SPDX-License-Identifier: ISC
#include "wrappers/cli/text/Text.h"

#include "frameworks/qobase/util/EditDistance.h"
#include "wrappers/common/Utf8.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Cli {

namespace {

bool IsControl(uint32_t code)
{
    // U+0080 to U+009F are control characters too and steer some terminals.
    return code < 0x20 || (code >= 0x7F && code < 0xA0);
}

} // namespace

std::string Printable(std::string_view name)
{
    std::string result;
    while (!name.empty()) {
        const auto character = Wrapper::Utf8::Decode(name);
        if (character && !IsControl(character->code)) {
            result += name.substr(0, character->length);
            name.remove_prefix(character->length);
        } else {
            result += fmt::format("\\x{:02X}", static_cast<uint8_t>(name[0]));
            name.remove_prefix(1);
        }
    }
    return result;
}

std::string ToUtf8(std::string_view name)
{
    std::string result;
    while (!name.empty()) {
        Wrapper::Utf8::Append(Wrapper::Utf8::Take(name), result);
    }
    return result;
}

std::string FormatClock(double seconds)
{
    const auto hundredths = std::llround(seconds * 100.0);
    if (hundredths < 6000) {
        return fmt::format("{:.2f} s", static_cast<double>(hundredths) / 100.0);
    }
    const auto hours = hundredths / 360000;
    const auto minutes = hundredths / 6000 % 60;
    const double rest = static_cast<double>(hundredths % 6000) / 100.0;
    return hours > 0 ? fmt::format("{}:{:02}:{:05.2f}", hours, minutes, rest)
                     : fmt::format("{}:{:05.2f}", minutes, rest);
}

std::string FormatRemaining(double seconds)
{
    const auto whole = std::llround(seconds);
    return whole >= 3600 ? fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60)
                         : fmt::format("{}:{:02}", whole / 60, whole % 60);
}

std::string NearestWord(std::string_view word, const std::vector<std::string>& candidates)
{
    std::string nearest;
    // A third of the letters may be wrong; beyond that a suggestion misleads.
    size_t least = word.size() / 3 + 1;
    for (const std::string& candidate : candidates) {
        const size_t distance = Util::CountEdits(word, candidate);
        const bool isAbbreviated = word.size() >= 4 && candidate.starts_with(word);
        if (distance < least || (isAbbreviated && nearest.empty())) {
            least = std::min(distance, least);
            nearest = candidate;
        }
    }
    return nearest;
}

std::string LowerCase(std::string_view text)
{
    std::string result(text);
    for (char& letter : result) {
        if (letter >= 'A' && letter <= 'Z') {
            letter = static_cast<char>(letter - 'A' + 'a');
        }
    }
    return result;
}

} // namespace Cli
