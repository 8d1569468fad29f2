// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/NumberText.h"

#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

namespace Util {
namespace {

String FormatWithDigits(float value, int digits)
{
    constexpr std::size_t Room = 32; // sign, 9 digits, point, exponent
    std::array<char, Room> text{};
    const char* const end =
        std::to_chars(
            text.data(), text.data() + text.size(), value, std::chars_format::general, digits)
            .ptr;
    return std::string_view(text.data(), end);
}

template <typename T>
std::optional<T> Parse(std::string_view text)
{
    T value{};
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end) {
        return std::nullopt;
    }
    return value;
}

} // namespace

String FormatFloat(float value)
{
    constexpr int UsualDigits = 8;
    constexpr int EnoughDigits = 9; // tell every float from its neighbours
    String text = FormatWithDigits(value, UsualDigits);
    if (ParseFloat(text) != value) {
        text = FormatWithDigits(value, EnoughDigits);
    }
    return text;
}

std::optional<float> ParseFloat(const String& text)
{
    const auto value = Parse<float>(text.View());
    return value && std::isfinite(*value) ? value : std::nullopt;
}

std::optional<uint32_t> ParseUInt(const String& text)
{
    return Parse<uint32_t>(text.View());
}

std::optional<int32_t> ParseInt(const String& text)
{
    return Parse<int32_t>(text.View());
}

} // namespace Util
