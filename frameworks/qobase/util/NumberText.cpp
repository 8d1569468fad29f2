// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/NumberText.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
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

std::optional<float> ParseFloatClamped(const String& text)
{
    const std::string_view view = text.View();
    float value = 0;
    const auto result = std::from_chars(view.data(), view.data() + view.size(), value);
    const bool isWhole = result.ptr == view.data() + view.size();
    if (result.ec != std::errc::result_out_of_range || !isWhole) {
        return ParseFloat(text);
    }
    const std::size_t mark = std::min(view.find_first_of("eE"), view.size());
    const bool isTiny = mark < view.size() ? view.substr(mark).size() > 1 && view[mark + 1] == '-'
                                           : view.starts_with("0.") || view.starts_with("-0.");
    const float end = isTiny ? 0.0F : std::numeric_limits<float>::max();
    return view.starts_with('-') ? -end : end;
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
