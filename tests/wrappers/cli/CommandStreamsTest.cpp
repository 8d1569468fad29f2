// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandFixture.h"

#include <cstring>

namespace {

using namespace CliTest;

class CommandStreams : public CommandFixture {
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
            const Outcome outcome = Succeed({"-", "-o", "-", "--bypass"}, {.input = bytes});
            const Audio result = Decode(outcome.out);
            EXPECT_EQ(result.format, audio.format);
            EXPECT_EQ(result.samples, audio.samples) << container << ' ' << subtype;
        }
    }
}

TEST_F(CommandStreams, OtherContainersCanBePipedInAndOut)
{
    const std::string bytes = Make("flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    const Outcome wav = Succeed({"-", "--bypass"}, {.input = bytes});
    EXPECT_EQ(Decode(wav.out).format, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
    EXPECT_EQ(Decode(wav.out).samples, audio.samples);
    const Outcome flac = Succeed({"-", "--bypass", "--format", "flac"}, {.input = wav.out});
    EXPECT_EQ(Decode(flac.out).format, SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    EXPECT_EQ(Decode(flac.out).samples, audio.samples);
}

TEST_F(CommandStreams, AStreamAndAFileGiveTheSameSamples)
{
    const std::string bytes = Make("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    Succeed({input});
    const Outcome piped = Succeed({"-"}, {.input = bytes});
    EXPECT_EQ(Decode(piped.out).samples, ReadAudio(folder / "talk.puffguard.wav").samples);
    const Outcome toFile = Succeed({"-", "-o", folder / "f.flac"}, {.input = bytes});
    EXPECT_EQ(ReadAudio(folder / "f.flac").samples, Decode(piped.out).samples);
}

TEST_F(CommandStreams, AWavOfUnknownLengthRunsToItsEnd)
{
    std::string bytes = Make("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    for (const size_t place : {size_t{4}, bytes.find("data") + 4}) {
        std::memset(bytes.data() + place, 0xFF, 4);
    }
    const Outcome outcome = Succeed({"-", "--bypass"}, {.input = bytes});
    EXPECT_EQ(Decode(outcome.out).samples, audio.samples);
}

TEST_F(CommandStreams, AShortOrEmptyOrForeignStreamFails)
{
    const std::string bytes = Make("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    for (const std::string& stream :
         {std::string(),
          bytes.substr(0, 30),
          bytes.substr(0, bytes.size() / 2),
          std::string("abc"),
          std::string("not audio, but longer than any head of a file would be")}) {
        ExpectRefusal({"-", "-o", folder / "never.wav"}, 1, "stdin", {.input = stream});
    }
}

TEST_F(CommandStreams, StandardOutputCarriesAudioAlone)
{
    const std::string bytes = Make("wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    const Outcome outcome = Succeed({input, "-o", "-"});
    EXPECT_EQ(outcome.out.size(), bytes.size());
    EXPECT_NE(outcome.err.find("prominent"), std::string::npos) << outcome.err;
}

} // namespace
