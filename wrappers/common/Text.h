// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Utf8.h"

#include <algorithm>
#include <cstddef>
#include <span>
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

/// Writes a text into a field, which isn't empty: cut between two characters where it is too long,
/// and terminated; what is left of the field is zero.
inline void CopyText(std::string_view text, std::span<char> field)
{
    const std::size_t length = Utf8::Cut(text, field.size() - 1).copy(field.data(), field.size());
    std::fill(field.begin() + static_cast<std::ptrdiff_t>(length), field.end(), '\0');
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
