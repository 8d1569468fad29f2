// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandFixture.h"

#include <cmath>
#include <csignal>
#include <filesystem>

namespace {

using namespace CliTest;

struct Kind {
    const char* extension;
    int format;
};

void PrintTo(const Kind& kind, std::ostream* out)
{
    *out << kind.extension << std::hex << kind.format;
}

class CommandRoundTrip : public CommandFixture, public testing::WithParamInterface<Kind> {};

TEST_P(CommandRoundTrip, BypassGivesTheInputBackBitForBit)
{
    Audio audio = MakeSpeech(44100, 2, 0.7);
    audio.format = GetParam().format;
    // The ends of the range, and more low bits than a float has.
    audio.samples[10] = 1.0;
    audio.samples[11] = -1.0;
    audio.samples[12] = 0.7 + std::ldexp(1.0, -31);
    const std::string original = folder / "in." + GetParam().extension;
    WriteAudio(original, audio);
    Succeed({original, "--bypass"});
    const Audio expected = ReadAudio(original);
    const Audio result = ReadAudio(folder / "in.puffguard." + GetParam().extension);
    EXPECT_EQ(result.format, expected.format);
    EXPECT_EQ(result.sampleRate, 44100);
    EXPECT_EQ(result.channels, 2);
    EXPECT_EQ(result.samples, expected.samples);
}

INSTANTIATE_TEST_SUITE_P(Kinds,
                         CommandRoundTrip,
                         testing::Values(Kind{"wav", SF_FORMAT_WAV | SF_FORMAT_PCM_U8},
                                         Kind{"wav", SF_FORMAT_WAV | SF_FORMAT_PCM_16},
                                         Kind{"wav", SF_FORMAT_WAV | SF_FORMAT_PCM_24},
                                         Kind{"wav", SF_FORMAT_WAV | SF_FORMAT_PCM_32},
                                         Kind{"wav", SF_FORMAT_WAV | SF_FORMAT_FLOAT},
                                         Kind{"wav", SF_FORMAT_WAV | SF_FORMAT_DOUBLE},
                                         Kind{"wav", SF_FORMAT_WAV | SF_FORMAT_ULAW},
                                         Kind{"wav", SF_FORMAT_WAV | SF_FORMAT_ALAW},
                                         Kind{"wav", SF_FORMAT_WAVEX | SF_FORMAT_PCM_24},
                                         Kind{"rf64", SF_FORMAT_RF64 | SF_FORMAT_PCM_24},
                                         Kind{"w64", SF_FORMAT_W64 | SF_FORMAT_FLOAT},
                                         Kind{"aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_S8},
                                         Kind{"aiff", SF_FORMAT_AIFF | SF_FORMAT_PCM_24},
                                         Kind{"aiff",
                                              SF_FORMAT_AIFF | SF_FORMAT_PCM_16 | SF_ENDIAN_LITTLE},
                                         Kind{"aiff", SF_FORMAT_AIFF | SF_FORMAT_FLOAT},
                                         Kind{"au", SF_FORMAT_AU | SF_FORMAT_PCM_32},
                                         Kind{"caf", SF_FORMAT_CAF | SF_FORMAT_PCM_24},
                                         Kind{"caf", SF_FORMAT_CAF | SF_FORMAT_ALAC_16},
                                         Kind{"caf", SF_FORMAT_CAF | SF_FORMAT_ALAC_24},
                                         Kind{"flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_16},
                                         Kind{"flac", SF_FORMAT_FLAC | SF_FORMAT_PCM_24}));

class CommandFiles : public CommandFixture {};

TEST_F(CommandFiles, RepairTakesBurstsDownAndLinesUp)
{
    Succeed({input});
    const Audio before = ReadAudio(input);
    const Audio after = ReadAudio(folder / "talk.puffguard.wav");
    ASSERT_EQ(after.samples.size(), before.samples.size());
    // The bursts of MakeSpeech() begin at 0.6, 1.6 and 2.6 s and last 60 ms.
    double burstBefore = 0;
    double burstAfter = 0;
    for (size_t i = 48000 * 26 / 10; i < 48000 * 266 / 100; ++i) {
        burstBefore += before.samples[i] * before.samples[i];
        burstAfter += after.samples[i] * after.samples[i];
    }
    EXPECT_LT(burstAfter, burstBefore / 2);
    // Away from bursts the output is the input: a shift by one sample would show. 1 to 1.2 s.
    double error = 0;
    double power = 0;
    for (size_t i = 48000; i < 48000 * 12 / 10; ++i) {
        error += std::pow(after.samples[i] - before.samples[i], 2);
        power += before.samples[i] * before.samples[i];
    }
    EXPECT_LT(error, power * 1e-3);
}

TEST_F(CommandFiles, DifferenceAndKeptLatencyAreOfTheSameResult)
{
    Succeed({input, "-o", folder / "result.wav"});
    Succeed({input, "-o", folder / "gone.wav", "--difference"});
    Succeed({input, "-o", folder / "raw.wav", "--keep-latency"});
    const auto before = ReadAudio(input).samples;
    const auto result = ReadAudio(folder / "result.wav").samples;
    const auto gone = ReadAudio(folder / "gone.wav").samples;
    const auto raw = ReadAudio(folder / "raw.wav").samples;
    ASSERT_EQ(gone.size(), before.size());
    double taken = 0;
    for (size_t i = 0; i < before.size(); ++i) {
        ASSERT_EQ(result[i] + gone[i], before[i]) << i;
        taken += gone[i] * gone[i];
    }
    EXPECT_GT(taken, 1.0);
    ASSERT_GT(raw.size(), result.size());
    EXPECT_TRUE(
        std::equal(result.begin(), result.end(), raw.end() - static_cast<long>(result.size())));
}

TEST_F(CommandFiles, BlocksAndJobsChangeNothing)
{
    Words inputs;
    for (int i = 0; i < 5; ++i) {
        inputs.push_back(folder / "copy" + std::to_string(i) + ".wav");
        std::filesystem::copy(input, inputs.back());
    }
    Succeed({input, "-o", folder / "plain.wav"});
    const std::string expected = ReadBytes(folder / "plain.wav");
    for (const char* block : {"1", "17", "20000"}) {
        Succeed({input, "-fo", folder / "b.wav", "--block", block});
        EXPECT_EQ(ReadBytes(folder / "b.wav"), expected) << block;
    }
    Words arguments = inputs;
    arguments.insert(arguments.end(), {"--jobs", "3", "--output-dir", folder / "out"});
    Succeed(arguments);
    for (int i = 0; i < 5; ++i) {
        EXPECT_EQ(ReadBytes(folder / "out/copy" + std::to_string(i) + ".wav"), expected);
    }
}

TEST_F(CommandFiles, NeverOverwritesUnlessForced)
{
    WriteBytes(folder / "talk.puffguard.wav", "mine");
    ExpectRefusal({input}, 1, "--force");
    EXPECT_EQ(ReadBytes(folder / "talk.puffguard.wav"), "mine");
    Succeed({input, "--force"});
    EXPECT_EQ(ReadAudio(folder / "talk.puffguard.wav").GetFrames(), 144000U);
}

TEST_F(CommandFiles, NothingOfARunReplacesItsRecordingsEvenWhenForced)
{
    WriteAudio(folder / "a.wav", MakeSpeech(16000, 1, 0.5));
    WriteAudio(folder / "a.puffguard.wav", MakeSpeech(16000, 1, 0.7));
    std::filesystem::create_symlink(folder / "a.wav", folder / "link");
    const std::string first = ReadBytes(folder / "a.wav");
    const std::string second = ReadBytes(folder / "a.puffguard.wav");
    const std::string a = folder / "a.wav";
    for (const Words& arguments :
         {Words{a, folder / "a.puffguard.wav", "-f"},
          Words{a, "-n", "-f", "--events", a},
          Words{a, "-n", "-f", "--events", folder / "link"},
          Words{a, "-n", "-f", "--labels", a},
          Words{a, "-n", "-f", "--plot", folder / "a.puffguard.wav"},
          Words{a, "-n", "-f", "--labels", folder / "x", "--plot", folder / "x"}}) {
        const Outcome outcome = RunPuffguard(arguments);
        EXPECT_NE(outcome.exitCode, 0) << testing::PrintToString(arguments);
        EXPECT_EQ(ReadBytes(a), first);
        EXPECT_EQ(ReadBytes(folder / "a.puffguard.wav"), second);
    }
}

TEST_F(CommandFiles, InPlaceReplacesWhenDoneAndKeepsTheOldOneOtherwise)
{
    Succeed({input, "-o", folder / "expected.wav"});
    Succeed({input, "--in-place"});
    EXPECT_EQ(ReadBytes(input), ReadBytes(folder / "expected.wav"));
    const std::string cut = ReadBytes(MakeCutRecording());
    ExpectRefusal({folder / "cut.flac", "--in-place"}, 1, "cut.flac");
    EXPECT_EQ(ReadBytes(folder / "cut.flac"), cut);
}

TEST_F(CommandFiles, RecursiveTakesAFolder)
{
    std::filesystem::create_directories(folder / "tree/sub");
    std::filesystem::copy(input, folder / "tree/a.wav");
    std::filesystem::copy(input, folder / "tree/sub/b.wav");
    WriteBytes(folder / "tree/readme.txt", "no audio");
    Succeed({"-r", folder / "tree", "-O", folder / "out"});
    EXPECT_TRUE(std::filesystem::exists(folder / "out/a.wav"));
    EXPECT_TRUE(std::filesystem::exists(folder / "out/sub/b.wav"));
}

TEST_F(CommandFiles, FormatsAndSubtypesChangeOnRequest)
{
    Succeed({input, "--format", "flac", "--subtype", "pcm24"});
    EXPECT_EQ(ReadAudio(folder / "talk.puffguard.flac").format, SF_FORMAT_FLAC | SF_FORMAT_PCM_24);
    Succeed({input, "-o", folder / "x.aiff"});
    EXPECT_EQ(ReadAudio(folder / "x.aiff").format, SF_FORMAT_AIFF | SF_FORMAT_PCM_16);
    EXPECT_EQ(RunPuffguard({input, "--format", "flac", "--subtype", "float"}).exitCode, 1);
}

TEST_F(CommandFiles, FloatIsNotClippedAndIntegersSaturate)
{
    Audio loud = MakeSpeech();
    loud.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    loud.samples[5000] = 3.5;
    loud.samples[5001] = -3.5;
    WriteAudio(folder / "loud.wav", loud);
    Succeed({folder / "loud.wav", "--bypass"});
    EXPECT_EQ(ReadAudio(folder / "loud.puffguard.wav").samples[5000], 3.5);
    Succeed({folder / "loud.wav", "--bypass", "-o", folder / "i.flac"});
    const auto integers = ReadAudio(folder / "i.flac").samples;
    EXPECT_EQ(integers[5000], 8388607.0 / 8388608);
    EXPECT_EQ(integers[5001], -1.0);
}

TEST_F(CommandFiles, TextsAndChunksStay)
{
    SF_INFO info = {};
    info.samplerate = 48000;
    info.channels = 2;
    info.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
    SNDFILE* file = sf_open((folder / "m.wav").c_str(), SFM_WRITE, &info);
    sf_set_string(file, SF_STR_TITLE, "A title");
    sf_set_string(file, SF_STR_ARTIST, "Somebody");
    SF_BROADCAST_INFO broadcast = {};
    std::copy_n("made by hand", 13, static_cast<char*>(broadcast.description));
    broadcast.time_reference_low = 4711;
    sf_command(file, SFC_SET_BROADCAST_INFO, &broadcast, sizeof broadcast);
    const std::vector<short> silence(20000);
    sf_write_short(file, silence.data(), 20000);
    sf_close(file);
    Succeed({folder / "m.wav"});
    file = sf_open((folder / "m.puffguard.wav").c_str(), SFM_READ, &info);
    ASSERT_NE(file, nullptr);
    EXPECT_STREQ(sf_get_string(file, SF_STR_TITLE), "A title");
    EXPECT_STREQ(sf_get_string(file, SF_STR_ARTIST), "Somebody");
    SF_BROADCAST_INFO result = {};
    EXPECT_EQ(sf_command(file, SFC_GET_BROADCAST_INFO, &result, sizeof result), SF_TRUE);
    EXPECT_STREQ(static_cast<char*>(result.description), "made by hand");
    EXPECT_EQ(result.time_reference_low, 4711U);
    sf_close(file);
}

TEST_F(CommandFiles, ShorterThanTheLatencyWorks)
{
    for (const size_t frames : {1U, 2U, 1000U}) {
        Audio tiny;
        tiny.samples.assign(frames, 0.25);
        WriteAudio(folder / "tiny.wav", tiny);
        Succeed({folder / "tiny.wav", "-f", "--bypass"});
        EXPECT_EQ(ReadAudio(folder / "tiny.puffguard.wav").samples, tiny.samples);
    }
}

TEST_F(CommandFiles, SignalsLeaveNothingHalfWritten)
{
    // Raw samples that never end, so that the signal always finds it at work.
    const std::string samples(400'000, '\x01');
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        const Outcome outcome = InterruptPuffguard(
            {"-", "--raw", "s16,48000,1", "-o", folder / "out.wav", "--labels", folder / "l.txt"},
            folder.GetPath(),
            samples,
            number);
        EXPECT_EQ(outcome.signal, number);
        EXPECT_EQ(folder.List(), Words{"talk.wav"});
    }
}

} // namespace
