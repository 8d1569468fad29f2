// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandRunner.h"
#include "tests/wrappers/cli/support/TestFiles.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

using namespace CliTest;
using Names = std::vector<std::string>;

class CommandStreams : public testing::Test {
protected:
    // Makes "talk.EXTENSION" and returns its bytes.
    std::string Make(const std::string& extension, int format, int channels = 2)
    {
        audio = MakeSpeech(48000, channels, 1.5);
        audio.format = format;
        const std::string path = folder / "talk." + extension;
        WriteAudio(path, audio);
        audio = ReadAudio(path);
        return ReadBytes(path);
    }

    Audio Decode(const std::string& bytes)
    {
        WriteBytes(folder / "decoded", bytes);
        return ReadAudio(folder / "decoded");
    }

    TemporaryFolder folder;
    Audio audio;
};

TEST_F(CommandStreams, WavGoesThroughAPipeBitForBit)
{
    for (const int subtype : {SF_FORMAT_PCM_U8,
                              SF_FORMAT_PCM_16,
                              SF_FORMAT_PCM_24,
                              SF_FORMAT_PCM_32,
                              SF_FORMAT_FLOAT,
                              SF_FORMAT_DOUBLE,
                              SF_FORMAT_ULAW}) {
        for (const int container : {SF_FORMAT_WAV, SF_FORMAT_WAVEX, SF_FORMAT_RF64}) {
            const std::string bytes = Make("wav", container | subtype);
            const Outcome outcome = RunPuffguard({"-", "-o", "-", "--bypass"}, {.input = bytes});
            ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
            const Audio result = Decode(outcome.out);
            EXPECT_EQ(result.format, audio.format);
            EXPECT_EQ(result.samples, audio.samples) << container << ' ' << subtype;
        }
    }
}

TEST_F(CommandStreams, OtherContainersCanBePipedInAndOut)
{
    const std::string bytes = Make("flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    const Outcome wav = RunPuffguard({"-", "--bypass"}, {.input = bytes});
    ASSERT_EQ(wav.exitCode, 0) << wav.err;
    EXPECT_EQ(Decode(wav.out).format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
    EXPECT_EQ(Decode(wav.out).samples, audio.samples);
    const Outcome flac = RunPuffguard({"-", "--bypass", "--format", "flac"}, {.input = wav.out});
    ASSERT_EQ(flac.exitCode, 0) << flac.err;
    EXPECT_EQ(Decode(flac.out).format, SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    EXPECT_EQ(Decode(flac.out).samples, audio.samples);
}

TEST_F(CommandStreams, AStreamAndAFileGiveTheSameSamples)
{
    const std::string bytes = Make("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    ASSERT_EQ(RunPuffguard({folder / "talk.wav"}).exitCode, 0);
    const Outcome piped = RunPuffguard({"-"}, {.input = bytes});
    ASSERT_EQ(piped.exitCode, 0);
    EXPECT_EQ(Decode(piped.out).samples, ReadAudio(folder / "talk.puffguard.wav").samples);
    const Outcome toFile = RunPuffguard({"-", "-o", folder / "f.flac"}, {.input = bytes});
    ASSERT_EQ(toFile.exitCode, 0) << toFile.err;
    EXPECT_EQ(ReadAudio(folder / "f.flac").samples, Decode(piped.out).samples);
}

TEST_F(CommandStreams, AWavOfUnknownLengthRunsToItsEnd)
{
    std::string bytes = Make("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    for (const size_t place : {size_t{4}, bytes.find("data") + 4})
        std::memset(bytes.data() + place, 0xFF, 4);
    const Outcome outcome = RunPuffguard({"-", "--bypass"}, {.input = bytes});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(Decode(outcome.out).samples, audio.samples);
}

TEST_F(CommandStreams, RawSamplesStayRaw)
{
    Make("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    std::string bytes;
    for (const double sample : audio.samples) {
        const auto value = static_cast<int16_t>(sample * 32768);
        bytes += static_cast<char>(value & 0xFF);
        bytes += static_cast<char>(value >> 8);
    }
    const Outcome outcome =
        RunPuffguard({"-", "-o", "-", "--raw", "s16,48000,2", "--bypass"}, {.input = bytes});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_TRUE(outcome.out == bytes);
}

TEST_F(CommandStreams, AShortOrEmptyOrForeignStreamFails)
{
    const std::string bytes = Make("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    for (const std::string& input :
         {std::string(),
          bytes.substr(0, 30),
          bytes.substr(0, bytes.size() / 2),
          std::string("abc"),
          std::string("not audio, but longer than any head of a file would be")}) {
        const Outcome outcome = RunPuffguard({"-", "-o", folder / "never.wav"}, {.input = input});
        EXPECT_EQ(outcome.exitCode, 1) << input.size();
        EXPECT_NE(outcome.err.find("stdin"), std::string::npos) << outcome.err;
    }
    EXPECT_FALSE(std::filesystem::exists(folder / "never.wav"));
}

TEST_F(CommandStreams, StandardOutputCarriesAudioAlone)
{
    const std::string bytes = Make("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    const Outcome outcome = RunPuffguard({folder / "talk.wav", "-o", "-"});
    ASSERT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.out.size(), bytes.size());
    EXPECT_NE(outcome.err.find("prominent"), std::string::npos) << outcome.err;
}

} // namespace
