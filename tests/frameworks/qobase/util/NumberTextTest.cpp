// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/NumberText.h"
#include "frameworks/qobase/util/TimeText.h"
#include "frameworks/qobase/util/Uuid.h"
#include "tests/support/GermanNumbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <iomanip>
#include <limits>
#include <random>
#include <set>
#include <sstream>

namespace {

/// A floating-point value between two bit patterns.
float Between(float low, float high, std::mt19937& random)
{
    std::uniform_int_distribution<uint32_t> bits(std::bit_cast<uint32_t>(low),
                                                 std::bit_cast<uint32_t>(high));
    const auto magnitude = std::bit_cast<float>(bits(random));
    return random() % 2 == 0 ? magnitude : -magnitude;
}

/// What the C library makes of it, in the C locale.
std::string Expected(float value)
{
    char text[64];
    std::snprintf(text, sizeof text, "%.8g", static_cast<double>(value));
    if (std::strtof(text, nullptr) != value) {
        std::snprintf(text, sizeof text, "%.9g", static_cast<double>(value));
    }
    return text;
}

TEST(NumberText, EveryFloatComesBackBitByBit)
{
    // Eight digits don't tell all floats apart where the steps of both bases lie badly.
    const std::pair<float, float> ranges[] = {
        {0.1F, 0.125F}, {100.0F, 128.0F}, {1e-45F, 1.2e-38F}, {0.0F, 3.4028234e38F}, {0.0F, 1.0F}};
    std::mt19937 random(1);
    for (const auto& [low, high] : ranges) {
        for (int i = 0; i < 20000; ++i) {
            const float value = Between(low, high, random);
            const String text = Util::FormatFloat(value);
            ASSERT_EQ(text.ToStdString(), Expected(value));
            const auto back = Util::ParseFloat(text);
            ASSERT_TRUE(back && std::bit_cast<uint32_t>(*back) == std::bit_cast<uint32_t>(value))
                << text.c_str();
        }
    }
    EXPECT_EQ(Util::FormatFloat(0.5F), "0.5");
    EXPECT_EQ(Util::FormatFloat(-0.0F), "-0");
}

TEST(NumberText, TakesNoNoticeOfTheLocale)
{
    const Support::GermanNumbers german;
    EXPECT_EQ(Util::FormatFloat(1234.5F), "1234.5");
    EXPECT_EQ(Util::ParseFloat("1234.5"), 1234.5F);
    EXPECT_FALSE(Util::ParseFloat("1234,5"));
    EXPECT_EQ(Util::ParseInt("-1234567"), -1234567);
}

TEST(NumberText, ReadsWholeNumbersWithinTheirRangeOnly)
{
    for (const char* const text :
         {"",         " ",    " 1",  "1 ",   "+1",     "--1",   "nan",   "NAN", "inf",
          "-inf",     "1e39", "0x1", "1e60", "-1e400", "1,5",   "1.5.2", "1e",  "e1",
          "infinity", "1f",   ".",   "-",    "1\n",    "1e-60", "1_0",   "0b1", "\xc2"}) {
        EXPECT_FALSE(Util::ParseFloat(text)) << text;
        EXPECT_FALSE(Util::ParseInt(text)) << text;
        EXPECT_FALSE(Util::ParseUInt(text)) << text;
    }
    constexpr float Most = std::numeric_limits<float>::max();
    const std::pair<const char*, float> clamped[] = {
        {"1e39", Most}, {"-1e400", -Most}, {"0.5e60", Most}, {"1e-60", 0.0F}, {"2", 2.0F}};
    for (const auto& [text, value] : clamped) {
        EXPECT_EQ(Util::ParseFloatClamped(text), value) << text;
    }
    for (const char* const text : {"", "nan", "inf", "1e60x", "+1", " 1e60"}) {
        EXPECT_FALSE(Util::ParseFloatClamped(text)) << text;
    }
    EXPECT_FALSE(Util::ParseFloat(String()));
    EXPECT_FALSE(Util::ParseFloat(std::string("1\0", 2)));
    for (const char* const text : {"16777217", "1e-45", ".5", "3.4028235e38", "0.1", "1E3"}) {
        EXPECT_EQ(Util::ParseFloat(text), std::strtof(text, nullptr)) << text;
    }

    EXPECT_EQ(Util::ParseUInt("4294967295"), 4294967295U);
    EXPECT_EQ(Util::ParseInt("-2147483648"), -2147483647 - 1);
    for (const char* const text : {"4294967296", "-2147483649", "1.0", "1e3"}) {
        EXPECT_FALSE(Util::ParseUInt(text)) << text;
        EXPECT_FALSE(Util::ParseInt(text)) << text;
    }
    EXPECT_FALSE(Util::ParseUInt("-1"));
    EXPECT_FALSE(Util::ParseInt("2147483648"));
}

TEST(TimeText, IsThePresentTimeInUtc)
{
    using Clock = std::chrono::system_clock; // time() may be some milliseconds behind it
    const std::time_t before = Clock::to_time_t(Clock::now());
    const String text = Util::GetPresentTimeText();
    const std::time_t after = Clock::to_time_t(Clock::now());
    EXPECT_EQ(text.Length(), 20U);
    std::tm parts{};
    std::istringstream(text.ToStdString()) >> std::get_time(&parts, "%Y-%m-%dT%H:%M:%SZ");
    const std::time_t present = timegm(&parts);
    EXPECT_TRUE(present >= before && present <= after) << text.c_str();
}

TEST(Uuid, HasOneTextAndComesBackFromIt)
{
    const Util::Uuid uuid{
        0, 0x11, 0x22, 0x33, 0x44, 0x55, 0x66, 0x77, 8, 0x99, 0xaa, 0xbb, 0xcc, 0xdd, 0xee, 0xff};
    const String text = "00112233-4455-6677-0899-aabbccddeeff";
    EXPECT_EQ(Util::FormatUuid(uuid), text);
    EXPECT_EQ(Util::ParseUuid(text), uuid);
    EXPECT_EQ(Util::ParseUuid("00112233-4455-6677-0899-AABBCCDDEEFF"), uuid);
    for (const char* const wrong : {"",
                                    "00112233-4455-6677-0899-aabbccddeef",
                                    "00112233-4455-6677-0899-aabbccddeeff0",
                                    "0011223-34455-6677-0899-aabbccddeeff",
                                    "00112233-4455-6677-0899-aabbccddeefg",
                                    "00112233-4455-6677-0899-aabbccddee-1",
                                    "{0112233-4455-6677-0899-aabbccddeef}",
                                    "00112233-4455-6677 0899-aabbccddeeff"}) {
        EXPECT_FALSE(Util::ParseUuid(wrong)) << wrong;
    }
}

TEST(Uuid, IsRandomAndSaysSo)
{
    std::set<Util::Uuid> made;
    for (int i = 0; i < 100; ++i) {
        made.insert(Util::MakeUuid());
    }
    EXPECT_EQ(made.size(), 100U);
    for (const auto& uuid : made) {
        EXPECT_EQ(uuid[6] >> 4, 4);
        EXPECT_EQ(uuid[8] >> 6, 2);
    }
}

} // namespace
