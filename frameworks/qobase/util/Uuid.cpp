// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Uuid.h"

#include "frameworks/qobase/util/PlatformFile.h"

#include <charconv>
#include <cstring>
#include <string>

namespace Util {
namespace {

constexpr std::size_t TextLength = 36;

bool IsHyphenAt(std::size_t position)
{
    return position == 8 || position == 13 || position == 18 || position == 23;
}

} // namespace

Uuid MakeUuid()
{
    const std::array<uint64_t, 2> bits{Platform::GetRandomBits(), Platform::GetRandomBits()};
    Uuid uuid{};
    std::memcpy(uuid.data(), bits.data(), uuid.size());
    uuid[6] = static_cast<uint8_t>((uuid[6] & 0x0F) | 0x40); // version 4
    uuid[8] = static_cast<uint8_t>((uuid[8] & 0x3F) | 0x80); // the variant that has versions
    return uuid;
}

String FormatUuid(const Uuid& uuid)
{
    constexpr std::string_view Digits = "0123456789abcdef";
    std::string text;
    for (const uint8_t byte : uuid) {
        if (IsHyphenAt(text.size())) {
            text += '-';
        }
        text += Digits[byte >> 4];
        text += Digits[byte & 0x0F];
    }
    return {std::move(text)};
}

std::optional<Uuid> ParseUuid(const String& text)
{
    const std::string_view view = text.View();
    if (view.size() != TextLength) {
        return std::nullopt;
    }
    Uuid uuid{};
    std::size_t position = 0;
    for (uint8_t& byte : uuid) {
        if (IsHyphenAt(position)) {
            if (view[position] != '-') {
                return std::nullopt;
            }
            ++position;
        }
        const char* const end = view.data() + position + 2;
        if (std::from_chars(view.data() + position, end, byte, 16).ptr != end) {
            return std::nullopt;
        }
        position += 2;
    }
    return uuid;
}

} // namespace Util
