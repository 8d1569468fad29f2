// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandFixture.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <limits>

namespace {

using namespace CliTest;

class CommandBadInput : public CommandFixture {
protected:
    CommandBadInput()
        : CommandFixture(MakeSpeech(16000, 1, 1.0))
    {
    }

    // The bad file fails with one line that holds `reason`; the good one beside it is done.
    void ExpectOneRefusal(const std::string& bad, const std::string& reason)
    {
        Words expected = Join(folder.List(), {"talk.puffguard.wav"});
        std::sort(expected.begin(), expected.end());
        const Outcome outcome = RunPuffguard({bad, input});
        EXPECT_EQ(outcome.exitCode, 1);
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 1) << outcome.err;
        EXPECT_NE(outcome.err.find(bad), std::string::npos) << outcome.err;
        EXPECT_NE(outcome.err.find(reason), std::string::npos) << outcome.err;
        EXPECT_EQ(folder.List(), expected);
        std::filesystem::remove(folder / "talk.puffguard.wav");
    }
};

TEST_F(CommandBadInput, MissingEmptyForeignAndFolder)
{
    ExpectOneRefusal(folder / "missing.wav", "No such file or directory");
    WriteBytes(folder / "empty.wav", "");
    ExpectOneRefusal(folder / "empty.wav", "the file is empty");
    WriteBytes(folder / "text.wav", "This is no audio at all, just a sentence in a file.\n");
    ExpectOneRefusal(folder / "text.wav", "no audio file");
    std::filesystem::create_directory(folder / "sub");
    ExpectOneRefusal(folder / "sub", "--recursive");
    Audio nothing;
    WriteAudio(folder / "nothing.wav", nothing);
    ExpectOneRefusal(folder / "nothing.wav", "holds no samples");
}

TEST_F(CommandBadInput, TruncatedInEveryContainer)
{
    Audio audio = MakeSpeech(48000, 1, 3.0);
    const std::pair<std::string, int> kinds[] = {{"wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16},
                                                 {"wav", SF_FORMAT_WAVEX | SF_FORMAT_FLOAT},
                                                 {"rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_24},
                                                 {"aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_16},
                                                 {"au", SF_FORMAT_AU | SF_FORMAT_PCM_16},
                                                 {"w64", SF_FORMAT_W64 | SF_FORMAT_PCM_16},
                                                 {"caf", SF_FORMAT_CAF | SF_FORMAT_PCM_16},
                                                 {"flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16}};
    for (const auto& [extension, format] : kinds) {
        SCOPED_TRACE(extension);
        audio.format = format;
        const std::string path = folder / "cut." + extension;
        WriteAudio(path, audio);
        const std::string whole = ReadBytes(path);
        WriteBytes(path, whole.substr(0, whole.size() * 2 / 3));
        ExpectOneRefusal(path, extension == "caf" ? "malformed" : "truncated");
        WriteBytes(path, whole.substr(0, 20));
        ExpectOneRefusal(path, "");
        std::filesystem::remove(path);
    }
}

TEST_F(CommandBadInput, RatesAndChannelsOutsideTheLimits)
{
    const auto make = [&](int rate, int channels) {
        WriteAudio(folder / "odd.wav", MakeSpeech(rate, channels, 0.2));
        return folder / "odd.wav";
    };
    ExpectOneRefusal(make(7999, 1), "outside 8000 to 192000 Hz");
    ExpectOneRefusal(make(192001, 1), "outside 8000 to 192000 Hz");
    ExpectOneRefusal(make(16000, 25), "25 channels");
    Succeed({make(8000, 1), "--dry-run"});
    Succeed({make(192000, 1), "--dry-run"});
    Succeed({make(16000, 24), "--dry-run"});
}

TEST_F(CommandBadInput, NoPermission)
{
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
    const RunSetup setup = {
        .environment = {"LSAN_OPTIONS="}, // the suppressions may lie out of reach, too
        .asNobody = ::geteuid() == 0,
        .program = installed / "bin/puffguard"};
    ASSERT_EQ(::chmod(input.c_str(), 0), 0);
    ExpectRefusal({input}, 1, "Permission denied", setup);
    ASSERT_EQ(::chmod(input.c_str(), 0644), 0);
    ASSERT_EQ(::chmod(folder.GetPath().c_str(), 0555), 0);
    ExpectRefusal({input}, 1, "Permission denied", setup);
    ASSERT_EQ(::chmod(folder.GetPath().c_str(), 0777), 0);
}

TEST_F(CommandBadInput, FullDisk)
{
    const std::string reason = "No space left on device";
    ExpectRefusal({input, "-o", "/dev/full"}, 1, reason);
    ExpectRefusal({input, "-o", "/dev/full", "--format", "flac"}, 1, reason);
    ExpectRefusal({input, "-n", "--plot", "/dev/full"}, 1, reason);
    const RunSetup full = {.outTo = "/dev/full"};
    ExpectRefusal({input, "-n"}, 1, reason, full);
    // The recording itself is done, and has its line.
    const Outcome piped = RunPuffguard({input, "-o", "-"}, full);
    EXPECT_EQ(piped.exitCode, 1);
    EXPECT_NE(piped.err.find(reason), std::string::npos) << piped.err;
    const Outcome events = RunPuffguard({input, "-n", "--events", "/dev/full"});
    EXPECT_EQ(events.exitCode, 1);
    EXPECT_NE(events.err.find(reason), std::string::npos) << events.err;
    EXPECT_EQ(folder.List(), Words{"talk.wav"});
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
    for (const size_t i : {1000U, 1001U, 70000U}) {
        audio.samples[i] = 0;
    }
    for (double& sample : audio.samples) {
        sample = static_cast<double>(static_cast<float>(sample));
    }
    EXPECT_EQ(ReadAudio(folder / "holes.puffguard.wav").samples, audio.samples);
}

TEST_F(CommandBadInput, NamesOfAnyBytes)
{
    for (const std::string stem : {"\xFF\xFE", "new\nline", " ", "-dash"}) {
        const std::string name = folder / stem + ".wav";
        std::filesystem::copy(input, name);
        Succeed({name, "--json", "--events", folder / "e.json", "--force"});
        EXPECT_TRUE(std::filesystem::exists(folder / stem + ".puffguard.wav"));
    }
    ExpectRefusal({folder / "\xFFno\nsuch.wav"}, 1, "\\xFFno\\x0Asuch.wav");
}

TEST_F(CommandBadInput, UsageErrorsTouchNothing)
{
    ExpectRefusal({}, 2, "no input");
    ExpectRefusal({input, "--sensitivity", "11"}, 2, "--sensitivity 11");
    ExpectRefusal({input, "--nonsense"}, 2, "--nonsense");
    ExpectRefusal({input, "-o"}, 2, "--output");
}

TEST_F(CommandBadInput, AModuleThatIsNotThereOrIsNone)
{
    for (const std::string module : {"/no/such/module.so", "talk.wav"}) {
        const RunSetup setup = {.folder = folder.GetPath(),
                                .environment = {"PUFFGUARD_MODULE=" + module}};
        ExpectRefusal({input}, 1, "module", setup);
    }
}

} // namespace
