// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

namespace Wrapper {

/// The text in a field of a record, which may fill it without a terminator.
template <std::size_t Size>
std::string TextOf(const char (&field)[Size])
{
    const std::string_view all(static_cast<const char*>(field), Size);
    return std::string(all.substr(0, all.find('\0')));
}

/// Writes a text into a field of a record, cut to it and terminated.
template <std::size_t Size>
void CopyText(std::string_view text, char (&field)[Size])
{
    const std::size_t length = text.copy(static_cast<char*>(field), Size - 1);
    std::fill(field + length, field + Size, '\0');
}

/// Whether two texts are the same but for the case of their ASCII letters.
inline bool IsSameText(std::string_view first, std::string_view second)
{
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return std::equal(
        first.begin(), first.end(), second.begin(), second.end(), [&](char a, char b) {
            return lower(a) == lower(b);
        });
}

} // namespace Wrapper
