// SPDX-License-Identifier: ISC
#include "wrappers/cli/autorepair/RepeatedInput.h"

#include "tests/wrappers/cli/support/TestFiles.h"
#include "wrappers/cli/files/FileError.h"

#include <gtest/gtest.h>

namespace {

using namespace Cli;

TEST(RepeatedInput, GivesTheSameSamplesAgainAndNoticesAFileThatGrowsOrShrinks)
{
    const CliTest::TemporaryFolder folder;
    const std::string path = folder / "talk.wav";
    CliTest::WriteAudio(path, CliTest::MakeSpeech(8000, 1, 0.5));
    const std::string bytes = CliTest::ReadBytes(path);
    for (const size_t size : {bytes.size() + 2, bytes.size() - 2}) {
        CliTest::WriteBytes(path, bytes);
        RepeatedInput input(FileName(path), std::nullopt);
        std::vector<double> first(8000);
        std::vector<double> second(8000);
        input.Begin();
        ASSERT_EQ(input.Read(first), 4000U);
        input.Begin();
        ASSERT_EQ(input.Read(std::span(second).first(1000)), 1000U);
        EXPECT_TRUE(std::equal(second.begin(), second.begin() + 1000, first.begin()));
        ASSERT_TRUE(input.SkipTo(3000));
        ASSERT_EQ(input.Read(std::span(second).first(500)), 500U);
        EXPECT_TRUE(std::equal(second.begin(), second.begin() + 500, first.begin() + 3000));
        EXPECT_EQ(input.GetPosition(), 3500);
        CliTest::WriteBytes(path, (bytes + "xx").substr(0, size));
        EXPECT_THROW(input.Read(second), FileError);
        EXPECT_THROW(input.Begin(), FileError);
    }
}

} // namespace
