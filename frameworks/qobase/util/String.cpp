// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/String.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr std::string_view DigitCharacters = "0123456789ABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr uint32_t HexBase = 16;

enum class Sign { Positive, Negative };

char LowerAscii(char character) noexcept
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
}

bool IsPlaceholder(std::string_view text, std::size_t position) noexcept
{
    return text[position] == '%' && text[position + 1] >= '0' && text[position + 1] <= '9';
}

/// Position of the placeholder that is filled next.
std::optional<std::size_t> FindPlaceholder(std::string_view text) noexcept
{
    std::optional<std::size_t> best;
    for (std::size_t i = 0; i + 1 < text.size(); ++i) {
        if (IsPlaceholder(text, i) && (!best || text[i + 1] < text[*best + 1])) {
            best = i;
        }
    }
    return best;
}

String NumberText(uint64_t magnitude, Sign sign, uint32_t base, uint32_t padding)
{
    const uint32_t usedBase =
        base < 2 || base > DigitCharacters.size() ? String::DefaultBase : base;
    std::string reversed;
    do {
        reversed += DigitCharacters[magnitude % usedBase];
        magnitude /= usedBase;
    } while (magnitude != 0);
    const std::size_t signLength = sign == Sign::Negative ? 1 : 0;
    while (reversed.size() + signLength < padding) {
        reversed += '0';
    }
    if (sign == Sign::Negative) {
        reversed += '-';
    }
    std::reverse(reversed.begin(), reversed.end());
    return {std::move(reversed)};
}

/// Both widths by way of 64 unsigned bits, so that the most negative value needs no case of its
/// own.
String SignedText(int64_t number, uint32_t base, uint32_t padding)
{
    const auto bits = static_cast<uint64_t>(number);
    return number < 0 ? NumberText(0 - bits, Sign::Negative, base, padding)
                      : NumberText(bits, Sign::Positive, base, padding);
}

} // namespace

String::String(const char* text)
{
    if (text != nullptr) {
        content = std::make_shared<const std::string>(text);
    }
}

String::String(std::string_view text)
    : content(std::make_shared<const std::string>(text))
{
}

String::String(std::string text)
    : content(std::make_shared<const std::string>(std::move(text)))
{
}

String String::arg(const String& text) const
{
    const auto place = FindPlaceholder(View());
    if (!place) {
        return *this + text;
    }
    std::string filled = ToStdString();
    filled.replace(*place, 2, text.View());
    return {std::move(filled)};
}

String String::arg(int32_t number, uint32_t base, uint32_t padding) const
{
    return arg(SignedText(number, base, padding));
}

String String::arg(uint32_t number, uint32_t base, uint32_t padding) const
{
    return arg(NumberText(number, Sign::Positive, base, padding));
}

String String::arg(int64_t number, uint32_t base, uint32_t padding) const
{
    if (base == HexBase) {
        return arg(static_cast<uint64_t>(number), base, padding);
    }
    return arg(SignedText(number, base, padding));
}

String String::arg(uint64_t number, uint32_t base, uint32_t padding) const
{
    return arg(NumberText(number, Sign::Positive, base, padding));
}

uint32_t String::Length() const noexcept
{
    return content ? static_cast<uint32_t>(content->size()) : 0;
}

std::optional<uint32_t> String::Find(const String& text, uint32_t start, bool caseSensitive) const
{
    if (start >= Length()) {
        return std::nullopt;
    }
    const auto tail = View().substr(start);
    const auto wanted = text.View();
    const auto isSame = [caseSensitive](char a, char b) {
        return caseSensitive ? a == b : LowerAscii(a) == LowerAscii(b);
    };
    const auto place = static_cast<uint32_t>(std::distance(
        tail.begin(), std::search(tail.begin(), tail.end(), wanted.begin(), wanted.end(), isSame)));
    // An empty text is found where the search starts, so the end always means that nothing was.
    if (place == tail.size()) {
        return std::nullopt;
    }
    return start + place;
}

String String::Left(uint32_t count) const
{
    return Mid(0, count);
}

String String::Mid(uint32_t start, uint32_t count) const
{
    if (IsNull() || (start == 0 && count >= Length())) {
        return *this;
    }
    return {View().substr(std::min(start, Length()), count)};
}

String String::ToLower() const
{
    if (IsNull()) {
        return *this;
    }
    std::string lowered = ToStdString();
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), LowerAscii);
    return {std::move(lowered)};
}

bool String::StartsWith(const String& prefix) const noexcept
{
    return View().starts_with(prefix.View());
}

std::vector<String> String::Split(char separator) const
{
    std::vector<String> parts;
    std::string_view rest = View();
    for (auto end = rest.find(separator); end != std::string_view::npos;
         end = rest.find(separator)) {
        parts.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end + 1);
    }
    parts.emplace_back(rest);
    return parts;
}

const char* String::c_str() const noexcept
{
    return content ? content->c_str() : "";
}

String operator+(const String& left, const String& right)
{
    if (right.IsEmpty() && !left.IsNull()) {
        return left;
    }
    if (left.IsNull()) {
        return right;
    }
    std::string joined = left.ToStdString();
    joined += right.View();
    return {std::move(joined)};
}

bool operator==(const String& left, const String& right) noexcept
{
    return left.IsNull() == right.IsNull() && left.View() == right.View();
}

std::strong_ordering operator<=>(const String& left, const String& right) noexcept
{
    if (left.IsNull() || right.IsNull()) {
        return static_cast<int>(!left.IsNull()) <=> static_cast<int>(!right.IsNull());
    }
    // Views compare as the traits of char do: by unsigned bytes.
    return left.View() <=> right.View();
}
