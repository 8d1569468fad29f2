// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Utf8.h"

#include <gtest/gtest.h>

#include <string>

using Util::Utf8::Cut;
using Util::Utf8::Decode;

TEST(Utf8Test, TheFirstAndLastCharactersOfEachLengthDecode)
{
    const std::pair<std::string, uint32_t> cases[] = {
        {std::string(1, '\0'), 0},
        {"\x7F", 0x7F},
        {"\xC2\x80", 0x80},
        {"\xDF\xBF", 0x7FF},
        {"\xE0\xA0\x80", 0x800},
        {"\xED\x9F\xBF", 0xD7FF},
        {"\xEE\x80\x80", 0xE000},
        {"\xEF\xBF\xBF", 0xFFFF},
        {"\xF0\x90\x80\x80", 0x10000},
        {"\xF4\x8F\xBF\xBF", 0x10FFFF},
    };
    for (const auto& [text, code] : cases) {
        const auto character = Decode(text + "\x80");
        ASSERT_TRUE(character) << text;
        EXPECT_EQ(character->code, code);
        EXPECT_EQ(character->length, text.size());
        // Without its last byte it is none.
        EXPECT_FALSE(Decode(text.substr(0, text.size() - 1))) << text;
    }
}

TEST(Utf8Test, WhatIsNotWellFormedIsNoCharacter)
{
    const char* const texts[] = {
        "\x80",             // goes on with a character that hasn't begun
        "\xC3g",            // a character that doesn't go on
        "\xC1\xBF",         // longer than it need be, as are the next two
        "\xE0\x9F\xBF",     //
        "\xF0\x8F\xBF\xBF", //
        "\xED\xA0\x80",     // the first and last surrogate
        "\xED\xBF\xBF",     //
        "\xF4\x90\x80\x80", // above the last character
        "\xF8\x88\x80\x80\x80",
        "\xFF",
    };
    for (const char* const text : texts) {
        EXPECT_FALSE(Decode(text)) << text;
    }
}

TEST(Utf8Test, ACutKeepsWholeCharacters)
{
    const std::string text = "a\xC3\xA9\xE2\x82\xAC"; // of 1, 2 and 3 bytes
    const size_t lengths[] = {0, 1, 1, 3, 3, 3, 6, 6};
    for (size_t most = 0; most < std::size(lengths); ++most) {
        EXPECT_EQ(Cut(text, most), text.substr(0, lengths[most])) << most;
    }
}
