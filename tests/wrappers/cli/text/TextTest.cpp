// SPDX-License-Identifier: ISC
#include "wrappers/cli/text/Text.h"

#include "wrappers/cli/report/Console.h"

#include <gtest/gtest.h>

namespace {

TEST(TextTest, PrintableKeepsOneLineOfCleanText)
{
    EXPECT_EQ(Cli::Printable("caf\xC3\xA9.wav"), "caf\xC3\xA9.wav");
    EXPECT_EQ(Cli::Printable("a\nb\x1B[31m"), "a\\x0Ab\\x1B[31m");
    EXPECT_EQ(Cli::Printable("\xFF\xC3"), "\\xFF\\xC3");
    EXPECT_EQ(Cli::Printable("\xC2\x9B"), "\\xC2\\x9B"); // a control character in two bytes
}

TEST(TextTest, ToUtf8ReplacesEachBadByte)
{
    EXPECT_EQ(Cli::ToUtf8("a\xFF\xE2\x82.wav"), "a\uFFFD\uFFFD\uFFFD.wav");
    EXPECT_EQ(Cli::ToUtf8("\xC0\xAF"), "\uFFFD\uFFFD");           // overlong "/"
    EXPECT_EQ(Cli::ToUtf8("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD"); // half of a surrogate pair
    EXPECT_EQ(Cli::ToUtf8("\xF0\x9F\x8E\xA4"), "\xF0\x9F\x8E\xA4");
}

TEST(TextTest, ClocksCarryOver)
{
    EXPECT_EQ(Cli::FormatClock(3.214), "3.21 s");
    EXPECT_EQ(Cli::FormatClock(59.996), "1:00.00");
    EXPECT_EQ(Cli::FormatClock(3723.4), "1:02:03.40");
    EXPECT_EQ(Cli::FormatRemaining(7.4), "0:07");
    EXPECT_EQ(Cli::FormatRemaining(3723), "1:02:03");
}

TEST(TextTest, SuggestsOnlyWhatIsNear)
{
    const std::vector<std::string> words = {"--strength", "--sensitivity", "--subtype"};
    EXPECT_EQ(Cli::NearestWord("--strenght", words), "--strength");
    EXPECT_EQ(Cli::NearestWord("--sens", words), "--sensitivity");
    EXPECT_EQ(Cli::NearestWord("--volume", words), "");
    EXPECT_EQ(Cli::NearestWord("-wva", {"-wav"}), "-wav"); // one slip, where two are too many
}

TEST(ProgressTest, ShowsShareSpeedAndRemainingTime)
{
    // A quarter of the work in 10 s leaves 30 s; 200 s of recording in 10 s is 20x.
    EXPECT_EQ(Cli::FormatProgress(0.25, 200, 10, 44),
              "[=====               ]  25 %  20x  0:30 left");
    EXPECT_EQ(Cli::FormatProgress(std::nullopt, 200, 10, 60), "3:20 done, 20x real time");
    for (size_t width = 1; width < 100; ++width) {
        EXPECT_LE(Cli::FormatProgress(0.5, 200, 10, width).size(), width);
    }
}

} // namespace
