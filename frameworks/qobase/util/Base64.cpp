// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Base64.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <utility>

namespace Util {

namespace {

constexpr std::string_view Alphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr uint8_t NoDigit = 64;

constexpr std::array<uint8_t, 256> MakeDigits()
{
    std::array<uint8_t, 256> digits{};
    digits.fill(NoDigit);
    for (std::size_t value = 0; value < Alphabet.size(); ++value) {
        digits[static_cast<uint8_t>(Alphabet[value])] = static_cast<uint8_t>(value);
    }
    return digits;
}

constexpr std::array<uint8_t, 256> Digits = MakeDigits();

} // namespace

String EncodeBase64(ByteSpan bytes)
{
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (std::size_t start = 0; start < bytes.size(); start += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - start);
        uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            group = group << 8 | (i < count ? bytes[start + i] : 0U);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            text += i <= count ? Alphabet[group >> (18 - 6 * i) & 63U] : '=';
        }
    }
    return {std::move(text)};
}

std::optional<Bytes> DecodeBase64(const String& text)
{
    std::string_view digits = text.View();
    if (digits.size() % 4 != 0) {
        return std::nullopt;
    }
    for (int padding = 0; padding < 2 && digits.ends_with('='); ++padding) {
        digits.remove_suffix(1);
    }

    Bytes bytes;
    bytes.reserve(digits.size() * 3 / 4);
    uint32_t bits = 0;
    uint32_t bitCount = 0;
    for (const char character : digits) {
        const uint8_t digit = Digits[static_cast<uint8_t>(character)];
        if (digit == NoDigit) {
            return std::nullopt;
        }
        bits = bits << 6 | digit; // what is shifted out at the top was taken before
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            bytes.push_back(static_cast<uint8_t>(bits >> bitCount));
        }
    }
    return bytes;
}

} // namespace Util
