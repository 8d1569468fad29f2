// SPDX-License-Identifier: ISC
#include "wrappers/common/Text.h"

#include <gtest/gtest.h>

TEST(TextTest, AFieldHoldsWholeCharactersAndIsTerminated)
{
    const std::pair<const char*, const char*> cases[] = {
        {"abcde", "abcde"},
        {"abcdef", "abcde"},
        {"abcd\xC3\xA9", "abcd"},     // two bytes, of which one would fit
        {"abc\xE2\x82\xAC", "abc"},   // three, of which two would
        {"ab\xF0\x9D\x84\x9E", "ab"}, // four, of which three would
        {"a\xF0\x9D\x84\x9E", "a\xF0\x9D\x84\x9E"},
        {"", ""},
    };
    for (const auto& [text, expected] : cases) {
        char field[6] = {'x', 'x', 'x', 'x', 'x', 'x'};
        Wrapper::CopyText(text, field);
        EXPECT_EQ(Wrapper::TextOf(field), expected);
        EXPECT_EQ(field[5], '\0') << text;
    }
}
