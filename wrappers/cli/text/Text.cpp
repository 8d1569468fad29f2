// SPDX-License-Identifier: ISC
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace Cli {

namespace {

/// Bytes of the well-formed UTF-8 sequence at the front of `text`, 0 when there is none. Overlong
/// forms, surrogates and values above U+10FFFF aren't well-formed.
size_t SequenceLength(std::string_view text)
{
    const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
    const uint8_t first = byte(0);
    if (first < 0x80) {
        return 1;
    }
    const size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < length) {
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    const uint8_t second = byte(1);
    const bool outOfRange = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                            (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return outOfRange ? 0 : length;
}

bool IsControl(std::string_view sequence)
{
    const auto first = static_cast<uint8_t>(sequence[0]);
    // U+0080 to U+009F are control characters too and steer some terminals.
    return first < 0x20 || first == 0x7F ||
           (first == 0xC2 && static_cast<uint8_t>(sequence[1]) < 0xA0);
}

// Letters that must be changed, added, left out or swapped with their neighbour.
size_t EditDistance(std::string_view a, std::string_view b)
{
    std::vector<std::vector<size_t>> cost(a.size() + 1, std::vector<size_t>(b.size() + 1));
    for (size_t i = 0; i <= a.size(); ++i) {
        for (size_t j = 0; j <= b.size(); ++j) {
            if (i == 0 || j == 0) {
                cost[i][j] = i + j;
                continue;
            }
            const size_t replaced = cost[i - 1][j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
            cost[i][j] = std::min({cost[i - 1][j] + 1, cost[i][j - 1] + 1, replaced});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                cost[i][j] = std::min(cost[i][j], cost[i - 2][j - 2] + 1);
            }
        }
    }
    return cost[a.size()][b.size()];
}

} // namespace

std::string Printable(std::string_view name)
{
    std::string result;
    while (!name.empty()) {
        const size_t length = SequenceLength(name);
        if (length == 0 || IsControl(name)) {
            result += fmt::format("\\x{:02X}", static_cast<uint8_t>(name[0]));
            name.remove_prefix(1);
        } else {
            result += name.substr(0, length);
            name.remove_prefix(length);
        }
    }
    return result;
}

std::string ToUtf8(std::string_view name)
{
    std::string result;
    while (!name.empty()) {
        const size_t length = SequenceLength(name);
        result += length == 0 ? std::string_view("\xEF\xBF\xBD") : name.substr(0, length);
        name.remove_prefix(std::max<size_t>(length, 1));
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
        const size_t distance = EditDistance(word, candidate);
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
