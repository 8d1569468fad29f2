// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandRunner.h"
#include "tests/wrappers/cli/support/TestFiles.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <limits>

namespace {

using namespace CliTest;
using Names = std::vector<std::string>;

/// A folder with one good recording.
class CommandBadInput : public testing::Test {
protected:
    void SetUp() override { WriteAudio(folder / "good.wav", MakeSpeech(16000, 1, 1.0)); }

    // The bad file fails with one line that holds `reason`; the good one beside it is done.
    void ExpectRefusal(const std::string& bad, const std::string& reason)
    {
        const Names before = folder.List();
        const Outcome outcome = RunPuffguard({bad, folder / "good.wav"});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_NE(outcome.err.find(bad), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
        Names expected = before;
        expected.emplace_back("good.puffguard.wav");
        std::sort(expected.begin(), expected.end());
        EXPECT_EQ(folder.List(), expected);
        std::filesystem::remove(folder / "good.puffguard.wav");
    }

    TemporaryFolder folder;
};

TEST_F(CommandBadInput, MissingEmptyForeignAndFolder)
{
    ExpectRefusal(folder / "missing.wav", "No such file or directory");
    WriteBytes(folder / "empty.wav", "");
    ExpectRefusal(folder / "empty.wav", "the file is empty");
    WriteBytes(folder / "text.wav", "This is no audio at all, just a sentence in a file.\n");
    ExpectRefusal(folder / "text.wav", "no audio file");
    std::filesystem::create_directory(folder / "sub");
    ExpectRefusal(folder / "sub", "--recursive");
    Audio nothing;
    WriteAudio(folder / "nothing.wav", nothing);
    ExpectRefusal(folder / "nothing.wav", "holds no samples");
}

TEST_F(CommandBadInput, TruncatedInEveryContainer)
{
    Audio audio = MakeSpeech(48000, 1, 3.0);
    for (const auto& [extension, format] :
         std::vector<std::pair<std::string, int>>{{"wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16},
                                                  {"wav", SF_FORMAT_WAVEX | SF_FORMAT_FLOAT},
                                                  {"rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_24},
                                                  {"aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16},
                                                  {"au", SF_FORMAT_AU | SF_FORMAT_PCM_16},
                                                  {"w64", SF_FORMAT_W64 | SF_FORMAT_PCM_16},
                                                  {"caf", SF_FORMAT_CAF | SF_FORMAT_PCM_16},
                                                  {"flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16}}) {
        SCOPED_TRACE(extension);
        audio.format = format;
        const std::string path = folder / "cut." + extension;
        WriteAudio(path, audio);
        const std::string whole = ReadBytes(path);
        WriteBytes(path, whole.substr(0, whole.size() * 2 / 3));
        ExpectRefusal(path, extension == "caf" ? "malformed" : "truncated");
        WriteBytes(path, whole.substr(0, 20));
        ExpectRefusal(path, "");
        std::filesystem::remove(path);
    }
}

TEST_F(CommandBadInput, DamagedHeadsNeverBringItDown)
{
    // Every byte of the head in turn becomes 0xFF: done or refused, but nothing worse.
    const std::string whole = ReadBytes(folder / "good.wav");
    for (size_t i = 0; i < 44; ++i) {
        std::string damaged = whole.substr(0, 4000);
        damaged[i] = '\xFF';
        WriteBytes(folder / "damaged.wav", damaged);
        const Outcome outcome = RunPuffguard({folder / "damaged.wav", "--dry-run"});
        EXPECT_TRUE(outcome.exitCode == 0 || outcome.exitCode == 1) << i << ' ' << outcome.signal;
    }
}

TEST_F(CommandBadInput, RatesAndChannelsOutsideTheLimits)
{
    for (const int rate : {7999, 192001}) {
        WriteAudio(folder / "rate.wav", MakeSpeech(rate, 1, 0.2));
        ExpectRefusal(folder / "rate.wav", "outside 8000 to 192000 Hz");
    }
    WriteAudio(folder / "wide.wav", MakeSpeech(16000, 25, 0.2));
    ExpectRefusal(folder / "wide.wav", "25 channels");
}

TEST_F(CommandBadInput, TheLimitsThemselvesWork)
{
    for (const int rate : {8000, 192000}) {
        WriteAudio(folder / "rate.wav", MakeSpeech(rate, 1, 0.2));
        EXPECT_EQ(RunPuffguard({folder / "rate.wav", "--dry-run"}).exitCode, 0) << rate;
    }
    WriteAudio(folder / "wide.wav", MakeSpeech(16000, 24, 0.2));
    EXPECT_EQ(RunPuffguard({folder / "wide.wav", "--dry-run"}).exitCode, 0);
}

TEST_F(CommandBadInput, NoPermission)
{
    const bool isRoot = ::geteuid() == 0;
    // Whoever has no rights may not even reach the build folder: the program comes along, with the
    // module where it looks for it.
    const TemporaryFolder installed;
    const std::filesystem::path built = PUFFGUARD_COMMAND;
    std::filesystem::create_directories(installed / "bin");
    std::filesystem::create_directories(installed / "lib/puffguard");
    std::filesystem::copy(built, installed / "bin/puffguard");
    std::filesystem::copy(built.parent_path().parent_path() / "lib/puffguard/LMPuffguard.so",
                          installed / "lib/puffguard/LMPuffguard.so");
    ASSERT_EQ(::chmod(installed.GetPath().c_str(), 0755), 0);
    RunSetup setup;
    setup.asNobody = isRoot;
    setup.program = installed / "bin/puffguard";
    setup.environment = {"LSAN_OPTIONS="}; // the suppressions may lie out of reach, too
    ASSERT_EQ(::chmod((folder / "good.wav").c_str(), 0), 0);
    const Outcome unreadable = RunPuffguard({folder / "good.wav"}, setup);
    EXPECT_EQ(unreadable.exitCode, 1);
    EXPECT_NE(unreadable.err.find("Permission denied"), std::string::npos) << unreadable.err;
    ASSERT_EQ(::chmod((folder / "good.wav").c_str(), 0644), 0);
    ASSERT_EQ(::chmod(folder.GetPath().c_str(), 0555), 0);
    const Outcome unwritable = RunPuffguard({folder / "good.wav"}, setup);
    EXPECT_EQ(unwritable.exitCode, 1);
    EXPECT_NE(unwritable.err.find("Permission denied"), std::string::npos) << unwritable.err;
    ASSERT_EQ(::chmod(folder.GetPath().c_str(), 0777), 0);
    EXPECT_EQ(folder.List(), Names{"good.wav"});
}

TEST_F(CommandBadInput, FullDisk)
{
    const std::string reason = "No space left on device";
    for (const Names& arguments : {Names{"-o", "/dev/full"},
                                   Names{"-o", "/dev/full", "--format", "flac"},
                                   Names{"-n", "--events", "/dev/full"},
                                   Names{"-n", "--plot", "/dev/full"}}) {
        Names all = {folder / "good.wav"};
        all.insert(all.end(), arguments.begin(), arguments.end());
        const Outcome outcome = RunPuffguard(all);
        EXPECT_EQ(outcome.exitCode, 1) << testing::PrintToString(all);
        EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
    }
    const Outcome piped = RunPuffguard({folder / "good.wav", "-o", "-"}, {.outTo = "/dev/full"});
    EXPECT_EQ(piped.exitCode, 1);
    EXPECT_NE(piped.err.find(reason), std::string::npos) << piped.err;
    const Outcome unheard = RunPuffguard({folder / "good.wav", "-n"}, {.outTo = "/dev/full"});
    EXPECT_EQ(unheard.exitCode, 1);
    EXPECT_NE(unheard.err.find(reason), std::string::npos) << unheard.err;
    EXPECT_EQ(folder.List(), Names{"good.wav"});
}

TEST_F(CommandBadInput, NonFiniteSamplesAreReportedOnceAndComeOutFinite)
{
    Audio audio = MakeSpeech(48000, 2, 2.0);
    audio.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    audio.samples[1000] = std::numeric_limits<double>::quiet_NaN();
    audio.samples[1001] = std::numeric_limits<double>::infinity();
    audio.samples[70000] = -std::numeric_limits<double>::infinity();
    WriteAudio(folder / "holes.wav", audio);
    const Outcome outcome = RunPuffguard({folder / "holes.wav", "--bypass"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_NE(outcome.err.find("3 samples were no finite number"), std::string::npos);
    EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
    for (const size_t i : {1000, 1001, 70000})
        audio.samples[i] = 0;
    for (double& sample : audio.samples)
        sample = static_cast<double>(static_cast<float>(sample));
    EXPECT_EQ(ReadAudio(folder / "holes.puffguard.wav").samples, audio.samples);
}

TEST_F(CommandBadInput, NamesOfAnyBytes)
{
    for (const std::string name : {"\xFF\xFE.wav", "new\nline.wav", " .wav", "-dash.wav"}) {
        std::filesystem::copy(folder / "good.wav", folder / name);
        const Outcome outcome =
            RunPuffguard({folder / name, "--json", "--events", folder / "e.json", "--force"});
        EXPECT_EQ(outcome.exitCode, 0) << outcome.err;
        const std::string output = name.substr(0, name.size() - 4) + ".puffguard.wav";
        EXPECT_TRUE(std::filesystem::exists(folder / output));
    }
    const Outcome missing = RunPuffguard({folder / "\xFFno\nsuch.wav"});
    EXPECT_EQ(std::count(missing.err.begin(), missing.err.end(), '\n'), 1);
    EXPECT_NE(missing.err.find("\\xFFno\\x0Asuch.wav"), std::string::npos) << missing.err;
}

TEST_F(CommandBadInput, UsageErrorsTouchNothing)
{
    for (const Names& arguments : {Names{},
                                   Names{folder / "good.wav", "--sensitivity", "11"},
                                   Names{folder / "good.wav", "--nonsense"},
                                   Names{folder / "good.wav", "-o"}}) {
        const Outcome outcome = RunPuffguard(arguments);
        EXPECT_EQ(outcome.exitCode, 2);
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_EQ(outcome.out, "");
    }
    EXPECT_EQ(folder.List(), Names{"good.wav"});
}

TEST_F(CommandBadInput, AModuleThatIsNotThereOrIsNone)
{
    for (const std::string module : {"/no/such/module.so", "good.wav"}) {
        const Outcome outcome = RunPuffguard(
            {folder / "good.wav"},
            {.folder = folder.GetPath(), .environment = {"PUFFGUARD_MODULE=" + module}});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_NE(outcome.err.find("module"), std::string::npos) << outcome.err;
    }
}

} // namespace
