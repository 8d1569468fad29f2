// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/Tasks.h"

#include "tests/wrappers/cli/support/TestFiles.h"
#include "wrappers/cli/files/FileError.h"

#include <gtest/gtest.h>

namespace {

using Cli::FileName;
using Cli::MakeTasks;
using Cli::Options;
using CliTest::TemporaryFolder;
using CliTest::WriteBytes;

/// A folder with recordings, other files, and results of former runs.
class TasksTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(folder / "b/c");
        for (const char* name : {"z.wav",
                                 "a.flac",
                                 "notes.txt",
                                 "a.puffguard.flac",
                                 "b/two.WAV",
                                 "b/c/three.ogg",
                                 "b/noextension"}) {
            WriteBytes(folder / name, "x");
        }
        options.isRecursive = true;
        options.inputs = {FileName(folder.GetPath())};
    }

    std::vector<std::string> Inputs() const
    {
        std::vector<std::string> names;
        for (const Cli::Task& task : MakeTasks(options)) {
            names.push_back(std::filesystem::relative(task.input.Get(), folder.GetPath()).string());
        }
        return names;
    }

    // Why the one recording can't be done, or the run as a whole.
    std::string Refusal() const
    {
        try {
            return MakeTasks(options).front().failure;
        } catch (const Cli::UsageError& error) {
            return error.what();
        }
    }

    TemporaryFolder folder;
    Options options;
};

TEST_F(TasksTest, FindsRecordingsInAStableOrderAndNoResults)
{
    EXPECT_EQ(Inputs(),
              (std::vector<std::string>{"a.flac", "b/c/three.ogg", "b/two.WAV", "z.wav"}));
    // Keeps the tree in the output folder, and skips that folder.
    options.outputDirectory = folder / "out";
    EXPECT_EQ(MakeTasks(options)[1].output.Get(), folder / "out/b/c/three.ogg");
    options.outputDirectory = folder / "b";
    EXPECT_EQ(Inputs(), (std::vector<std::string>{"a.flac", "z.wav"}));
    options.isRecursive = false;
    EXPECT_EQ(MakeTasks(options).size(), 1U);
    EXPECT_NE(Refusal().find("--recursive"), std::string::npos);
}

TEST_F(TasksTest, RefusesARecordingAsItsOwnOutputAndTwoResultsWithOneName)
{
    options.inputs = {FileName(folder / "z.wav"), FileName(folder / "b/../z.wav")};
    const auto tasks = MakeTasks(options);
    EXPECT_EQ(tasks[0].failure, "");
    EXPECT_NE(tasks[1].failure.find("is already the result of"), std::string::npos);
    options.inputs.pop_back();
    options.isSingle = true;
    options.output = FileName(folder / "b/../z.wav");
    EXPECT_NE(Refusal().find("--in-place"), std::string::npos);
}

TEST_F(TasksTest, KnowsAFileThatIsStillToComeByAnyNameOfIt)
{
    const std::filesystem::path before = std::filesystem::current_path();
    std::filesystem::current_path(folder.GetPath());
    options.inputs = {FileName("z.wav")};
    options.isSingle = true;
    const std::vector<FileName*> results = {&options.output,
                                            &options.labels,
                                            &options.plot,
                                            &options.page,
                                            &options.events,
                                            &options.session.savePreset,
                                            &options.session.stateOut};
    for (FileName* first : results) {
        for (FileName* second : results) {
            if (first == second) {
                continue;
            }
            *first = FileName("k.xml");
            *second = FileName("./k.xml");
            EXPECT_NE(Refusal().find("k.xml is already"), std::string::npos);
            *second = FileName(folder / "k.xml");
            EXPECT_NE(Refusal().find("k.xml is already"), std::string::npos);
            *first = {};
            *second = {};
        }
    }
    std::filesystem::current_path(before);
}

TEST(TaskNamesTest, DefaultOutputStandsBesideTheInput)
{
    const auto name = [](const char* input, const char* extension) {
        return Cli::DefaultOutputName(FileName(input), extension).Get();
    };
    EXPECT_EQ(name("d/talk.wav", ""), "d/talk.puffguard.wav");
    EXPECT_EQ(name("talk.a.wav", "flac"), "talk.a.puffguard.flac");
    EXPECT_EQ(name("noextension", ""), "noextension.puffguard");
    EXPECT_EQ(name("d/\xFF\n.wav", ""), "d/\xFF\n.puffguard.wav");
}

TEST(TaskNamesTest, ReportsTakeFoldersPatternsAndNames)
{
    const auto name = [](const char* pattern, const char* input, bool isFolder) {
        return Cli::ReportName(FileName(pattern), FileName(input), ".png", isFolder).Get();
    };
    EXPECT_EQ(name("p.png", "talk.wav", false), "p.png");
    EXPECT_EQ(name("d", "sub/talk.wav", true), "d/sub/talk.png");
    EXPECT_EQ(name("d/{name}-x.png", "sub/talk.wav", true), "d/talk-x.png");
    EXPECT_EQ(name("d", "-", true), "d/stdin.png");
}

} // namespace
