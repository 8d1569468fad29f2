// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/String.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace {

std::vector<std::string> Bytes(const std::vector<String>& texts)
{
    std::vector<std::string> bytes;
    bytes.reserve(texts.size());
    for (const String& text : texts) {
        bytes.push_back(text.ToStdString());
    }
    return bytes;
}

TEST(String, NullAndEmptyAreAlikeInLengthAndToldApartByComparison)
{
    const String null;
    const String empty("");
    EXPECT_EQ(null.Length(), empty.Length());
    EXPECT_TRUE(null.IsNull());
    EXPECT_FALSE(empty.IsNull());
    EXPECT_TRUE(null.IsEmpty() && empty.IsEmpty());
    EXPECT_FALSE(null == empty);
    EXPECT_TRUE(null < empty);
    EXPECT_FALSE(empty < null);
    EXPECT_TRUE(null == String(static_cast<const char*>(nullptr)));
    EXPECT_FALSE(null < String());
    EXPECT_STREQ(null.c_str(), "");
    EXPECT_EQ(null + "b", "b");
    EXPECT_EQ(String("a") + null, "a");
    EXPECT_TRUE((null + null).IsNull());
    EXPECT_FALSE((null + "").IsNull());
}

TEST(String, ComparesUnsignedBytesWhateverTheSignOfChar)
{
    // 0x7F before 0x80 only when bytes are unsigned; a prefix sorts first.
    EXPECT_TRUE(String("\x7f") < String("\x80"));
    EXPECT_TRUE(String("a") < String("\xc3\xa4"));
    EXPECT_TRUE(String("ab") < String("abc"));
    EXPECT_TRUE(String("B") < String("a"));
    EXPECT_FALSE(String("a") == String(std::string_view("a\0", 2)));
    std::map<String, int> map{{String(), 0}, {"", 1}, {"z", 2}};
    EXPECT_EQ(map.begin()->second, 0);
    EXPECT_EQ(map.size(), 3U);
}

TEST(String, ArgFillsTheLowestDigitLeftmostOnceOrIsAppended)
{
    const std::tuple<const char*, std::vector<const char*>, const char*> rows[] = {
        {"%2 %1", {"a", "b"}, "b a"},
        {"%1%1", {"x"}, "x%1"},
        {"%1->%1", {"5", "5"}, "5->5"},
        {"%3%0%9", {"z"}, "%3z%9"},
        {"%10", {"x"}, "x0"},
        {"%%1", {"x"}, "%x"},
        {"100% %1 %", {"x"}, "100% x %"},
        // Without a placeholder; a lone percent sign is none.
        {"abc", {"x"}, "abcx"},
        {"50%", {"1"}, "50%1"},
        {"", {"x"}, "x"},
        {"%1", {"a", "b", "c"}, "abc"},
        {"%d", {"x"}, "%dx"},
        // Also in what was filled in.
        {"[%1] %2", {"%2", "x"}, "[x] %2"},
        {"[%1] %2", {"", "x"}, "[] x"},
    };
    for (const auto& [pattern, arguments, expected] : rows) {
        const String unchanged(pattern);
        String text = unchanged;
        for (const char* argument : arguments) {
            text = text.arg(argument);
        }
        EXPECT_EQ(text, expected) << pattern;
        EXPECT_EQ(unchanged, pattern);
    }
    EXPECT_EQ(String().arg("x"), "x");
    EXPECT_EQ(String("[%1]").arg(String()), "[]");
}

TEST(String, NumbersInAnyBaseAtTheirLimitsAndPaddedBehindTheSign)
{
    const String pattern("%1");
    EXPECT_EQ(pattern.arg(255, 16), "FF");
    for (const uint32_t base : {0U, 1U, 37U, std::numeric_limits<uint32_t>::max()}) {
        EXPECT_EQ(pattern.arg(120, base), "120") << base;
    }
    EXPECT_EQ(pattern.arg(std::numeric_limits<uint32_t>::max()), "4294967295");
    EXPECT_EQ(pattern.arg(std::numeric_limits<int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(pattern.arg(std::numeric_limits<uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(pattern.arg(int64_t{-1}, 16), "FFFFFFFFFFFFFFFF");
    EXPECT_EQ(pattern.arg(int64_t{-10}, 10), "-10");
    EXPECT_EQ(pattern.arg(7, 10, 3), "007");
    EXPECT_EQ(pattern.arg(-7, 10, 4), "-007");
    EXPECT_EQ(pattern.arg(1234, 10, 3), "1234");
    EXPECT_EQ(pattern.arg(uint64_t{10}, 16, 2), "0A");
}

TEST(String, NumbersReadBackAsTheyWere)
{
    for (uint32_t base = 2; base <= 36; ++base) {
        for (const int32_t number : {-2147483647 - 1, -36, -1, 0, 1, 35, 36, 2147483647}) {
            const std::string text = String("%1").arg(number, base).ToStdString();
            EXPECT_EQ(std::stoll(text, nullptr, static_cast<int>(base)), number) << base;
        }
    }
}

TEST(String, FindStopsAtTheEnd)
{
    const String text("abcABC");
    EXPECT_EQ(text.Find("ABC"), 3U);
    EXPECT_EQ(text.Find("ABC", 0, false), 0U);
    EXPECT_EQ(text.Find("aBc", 1, false), 3U);
    EXPECT_EQ(text.Find("c", 2), 2U);
    EXPECT_EQ(text.Find("c", 3), std::nullopt);
    EXPECT_EQ(text.Find("C", 5), 5U);
    EXPECT_EQ(text.Find("C", 6), std::nullopt);
    EXPECT_EQ(text.Find("", 6), std::nullopt);
    EXPECT_EQ(text.Find("", 2), 2U);
    EXPECT_EQ(text.Find("abcABCd"), std::nullopt);
    EXPECT_EQ(String().Find("a"), std::nullopt);
    EXPECT_EQ(String().Find(""), std::nullopt);
    EXPECT_EQ(String("\xc3\x84").Find("\xc3\xa4", 0, false), std::nullopt); // no folding past ASCII
}

TEST(String, SubstringsStayInsideTheText)
{
    const String text("plosive");
    EXPECT_EQ(text.Left(4), "plos");
    EXPECT_EQ(text.Left(0), "");
    EXPECT_EQ(text.Left(99), "plosive");
    EXPECT_EQ(text.Mid(4, 2), "iv");
    EXPECT_EQ(text.Mid(4), "ive");
    EXPECT_EQ(text.Mid(6, UINT32_MAX), "e");
    EXPECT_EQ(text.Mid(7, 1), "");
    EXPECT_EQ(text.Mid(99, 1), "");
    EXPECT_TRUE(String().Mid(1, 1).IsNull());
    EXPECT_EQ(text.Left(100).Data(), text.Data()); // a copy shares the bytes
    EXPECT_FALSE(String("Lang").StartsWith("Lang:"));
    EXPECT_FALSE(String("xLang:").StartsWith("Lang:"));
    EXPECT_TRUE(text.StartsWith("plo") && text.StartsWith("") && String().StartsWith(String()));
    EXPECT_EQ(String("AZ az [@`{ \xc3\x84").ToLower(), "az az [@`{ \xc3\x84");
    EXPECT_EQ(String(std::string_view("a\0b", 3)).Find("b"), 2U); // a NUL is a byte as any
}

TEST(String, SplitKeepsEmptyParts)
{
    using Parts = std::vector<std::string>;
    EXPECT_EQ(Bytes(String("a|b").Split('|')), (Parts{"a", "b"}));
    EXPECT_EQ(Bytes(String("|a||").Split('|')), (Parts{"", "a", "", ""}));
    EXPECT_EQ(Bytes(String("a").Split('|')), (Parts{"a"}));
    EXPECT_EQ(Bytes(String().Split('|')), (Parts{""}));
}

} // namespace
