// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/String.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace {

std::vector<std::string> Bytes(const std::vector<String>& texts)
{
    std::vector<std::string> bytes;
    bytes.reserve(texts.size());
    for (const String& text : texts)
        bytes.push_back(text.ToStdString());
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

TEST(String, ACopySharesTheBytes)
{
    const String text("shared");
    const String copy = text;
    EXPECT_EQ(copy.Data(), text.Data());
    EXPECT_EQ(text.Left(100).Data(), text.Data());
}

TEST(String, KeepsNulBytesInside)
{
    const String text(std::string_view("a\0b", 3));
    EXPECT_EQ(text.Length(), 3U);
    EXPECT_EQ(text.Find("b"), 2U);
    EXPECT_EQ((text + "c").Length(), 4U);
}

TEST(String, ArgFillsTheLowestDigitLeftmostOnce)
{
    EXPECT_EQ(String("%2 %1").arg("a").arg("b"), "b a");
    EXPECT_EQ(String("%1%1").arg("x"), "x%1");
    EXPECT_EQ(String("%1->%1").arg(5).arg(5), "5->5");
    EXPECT_EQ(String("%3%0%9").arg("z"), "%3z%9");
    EXPECT_EQ(String("%10").arg("x"), "x0");
    EXPECT_EQ(String("%%1").arg("x"), "%x");
    EXPECT_EQ(String("100% %1 %").arg("x"), "100% x %");
}

TEST(String, ArgAppendsWhereNoPlaceholderIs)
{
    EXPECT_EQ(String("abc").arg("x"), "abcx");
    EXPECT_EQ(String("50%").arg("1"), "50%1"); // a lone percent sign is no placeholder
    EXPECT_EQ(String().arg("x"), "x");
    EXPECT_EQ(String("%1").arg("a").arg("b").arg("c"), "abc");
    EXPECT_EQ(String("%d").arg("x"), "%dx");
}

TEST(String, ArgFindsPlaceholdersInWhatWasFilledIn)
{
    EXPECT_EQ(String("[%1] %2").arg("%2").arg("x"), "[x] %2");
    EXPECT_EQ(String("[%1] %2").arg(String()).arg("x"), "[] x");
}

TEST(String, ArgOnATextLeavesThatTextAsItWas)
{
    const String pattern("%1");
    EXPECT_EQ(pattern.arg("x"), "x");
    EXPECT_EQ(pattern, "%1");
}

TEST(String, NumbersInBasesTwoToThirtySix)
{
    EXPECT_EQ(String("%1").arg(255, 16), "FF");
    EXPECT_EQ(String("%1").arg(-255, 16), "-FF");
    EXPECT_EQ(String("%1").arg(5, 2), "101");
    EXPECT_EQ(String("%1").arg(1295, 36), "ZZ"); // 35 * 36 + 35
    EXPECT_EQ(String("%1").arg(0), "0");
    for (const uint32_t base : {0U, 1U, 37U, std::numeric_limits<uint32_t>::max()})
        EXPECT_EQ(String("%1").arg(120, base), "120") << base;
}

TEST(String, NumbersAtTheirLimits)
{
    EXPECT_EQ(String("%1").arg(std::numeric_limits<int32_t>::min()), "-2147483648");
    EXPECT_EQ(String("%1").arg(std::numeric_limits<int32_t>::min(), 16), "-80000000");
    EXPECT_EQ(String("%1").arg(std::numeric_limits<int32_t>::min(), 2),
              String(std::string("-1") + std::string(31, '0')));
    EXPECT_EQ(String("%1").arg(std::numeric_limits<uint32_t>::max()), "4294967295");
    EXPECT_EQ(String("%1").arg(std::numeric_limits<int64_t>::min()), "-9223372036854775808");
    EXPECT_EQ(String("%1").arg(std::numeric_limits<uint64_t>::max()), "18446744073709551615");
    EXPECT_EQ(String("%1").arg(int64_t{-1}, 16), "FFFFFFFFFFFFFFFF");
    EXPECT_EQ(String("%1").arg(int64_t{-10}, 10), "-10");
}

TEST(String, PaddingFillsWithZerosBehindTheSign)
{
    EXPECT_EQ(String("%1").arg(7, 10, 3), "007");
    EXPECT_EQ(String("%1").arg(-7, 10, 4), "-007");
    EXPECT_EQ(String("%1").arg(1234, 10, 3), "1234");
    EXPECT_EQ(String("%1").arg(uint64_t{10}, 16, 2), "0A");
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
}

TEST(String, LowerCasesAsciiOnly)
{
    EXPECT_EQ(String("AZ az [@`{ \xc3\x84").ToLower(), "az az [@`{ \xc3\x84");
}

TEST(String, StartsWithTakesAnyEmptyPrefix)
{
    EXPECT_TRUE(String("Lang:de").StartsWith("Lang:"));
    EXPECT_FALSE(String("Lang").StartsWith("Lang:"));
    EXPECT_FALSE(String("xLang:").StartsWith("Lang:"));
    EXPECT_TRUE(String("x").StartsWith(""));
    EXPECT_TRUE(String().StartsWith(String()));
}

TEST(String, SplitKeepsEmptyParts)
{
    using Parts = std::vector<std::string>;
    EXPECT_EQ(Bytes(String("a|b").Split('|')), (Parts{"a", "b"}));
    EXPECT_EQ(Bytes(String("|a||").Split('|')), (Parts{"", "a", "", ""}));
    EXPECT_EQ(Bytes(String("a").Split('|')), (Parts{"a"}));
    EXPECT_EQ(Bytes(String().Split('|')), (Parts{""}));
}

TEST(String, ConcatenatesInOrderAndWithNull)
{
    EXPECT_EQ(String("a") + "b", "ab");
    EXPECT_EQ("a" + String("b"), "ab");
    EXPECT_EQ(String() + "b", "b");
    EXPECT_EQ(String("a") + String(), "a");
    EXPECT_TRUE((String() + String()).IsNull());
    EXPECT_FALSE((String() + "").IsNull());
}

TEST(String, CopiesAreMadeAndDroppedOnSeveralThreads)
{
    // Sees a counter that isn't atomic, under the thread and address sanitizers.
    const String text("a text too long to be kept without an allocation of its own");
    std::array<std::thread, 4> threads;
    for (auto& thread : threads) {
        thread = std::thread([&text] {
            for (int i = 0; i < 1000; ++i) {
                const String copy = text;
                ASSERT_EQ(copy.Length(), text.Length());
            }
        });
    }
    for (auto& thread : threads)
        thread.join();
    EXPECT_TRUE(text.StartsWith("a text"));
}

} // namespace
