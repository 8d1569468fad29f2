// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandFixture.h"

#include <cmath>
#include <csignal>

namespace {

using namespace CliTest;

class CommandFiles : public CommandFixture {};

TEST_F(CommandFiles, BypassGivesEveryKindBackBitForBit)
{
    const std::tuple<const char*, int, std::vector<int>> kinds[] = {
        {"wav", SF_FORMAT_WAV, {SF_FORMAT_PCM_U8, SF_FORMAT_PCM_16, SF_FORMAT_PCM_24}},
        {"wav", SF_FORMAT_WAV, {SF_FORMAT_PCM_32, SF_FORMAT_FLOAT, SF_FORMAT_DOUBLE}},
        {"wav", SF_FORMAT_WAV, {SF_FORMAT_ULAW, SF_FORMAT_ALAW}},
        {"wav", SF_FORMAT_WAVEX, {SF_FORMAT_PCM_24}},
        {"rf64", SF_FORMAT_RF64, {SF_FORMAT_PCM_24}},
        {"w64", SF_FORMAT_W64, {SF_FORMAT_FLOAT}},
        {"aiff", SF_FORMAT_AIFF, {SF_FORMAT_PCM_S8, SF_FORMAT_PCM_24, SF_FORMAT_FLOAT}},
        {"aiff", SF_FORMAT_AIFF | SF_ENDIAN_LITTLE, {SF_FORMAT_PCM_16}},
        {"au", SF_FORMAT_AU, {SF_FORMAT_PCM_32}},
        {"caf", SF_FORMAT_CAF, {SF_FORMAT_PCM_24, SF_FORMAT_ALAC_16, SF_FORMAT_ALAC_24}},
        {"flac", SF_FORMAT_FLAC, {SF_FORMAT_PCM_16, SF_FORMAT_PCM_24}},
    };
    Audio audio = MakeSpeech(44100, 2, 0.7);
    // The ends of the range, more low bits than a float has, and what only floats can hold.
    audio.samples[10] = 1.0;
    audio.samples[11] = -1.0;
    audio.samples[12] = 0.7 + std::ldexp(1.0, -31);
    audio.samples[13] = 3.5;
    for (const auto& [extension, container, subtypes] : kinds) {
        for (const int subtype : subtypes) {
            SCOPED_TRACE(testing::Message() << extension << std::hex << (container | subtype));
            audio.format = container | subtype;
            const std::string original = folder / "in." + extension;
            WriteAudio(original, audio);
            Succeed({original, "--bypass", "--force"});
            const Audio expected = ReadAudio(original);
            const Audio result = ReadAudio(folder / "in.puffguard." + extension);
            EXPECT_EQ(result.format, expected.format);
            EXPECT_EQ(result.sampleRate, 44100);
            EXPECT_EQ(result.channels, 2);
            EXPECT_TRUE(result.samples == expected.samples);
        }
    }
}

TEST_F(CommandFiles, BurstsGoDownTheRestStaysAndDifferenceAndKeptLatencyAreOfTheSameResult)
{
    Succeed({input, "-o", folder / "result.wav"});
    Succeed({input, "-o", folder / "gone.wav", "--difference"});
    Succeed({input, "-o", folder / "raw.wav", "--keep-latency"});
    const auto before = ReadAudio(input).samples;
    const auto result = ReadAudio(folder / "result.wav").samples;
    const auto gone = ReadAudio(folder / "gone.wav").samples;
    const auto raw = ReadAudio(folder / "raw.wav").samples;
    ASSERT_EQ(gone.size(), before.size());
    // The bursts of MakeSpeech() begin at 0.6, 1.6 and 2.6 s and last 60 ms.
    double burstBefore = 0;
    double burstAfter = 0;
    for (size_t i = 0; i < before.size(); ++i) {
        ASSERT_EQ(result[i] + gone[i], before[i]) << i;
        if (i >= 48000 * 26 / 10 && i < 48000 * 266 / 100) {
            burstBefore += before[i] * before[i];
            burstAfter += result[i] * result[i];
        }
        ASSERT_TRUE(gone[i] == 0 || i < 48000 || i > 48000 * 12 / 10) << i; // no burst near
    }
    EXPECT_LT(burstAfter, burstBefore / 2);
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

// As the processors of other people run it.
TEST_F(CommandFiles, EveryLevelOfTheProcessorGivesTheSameBits)
{
    for (const auto& [rate, channels] : {std::pair(8000, 1),
                                         {11025, 1},
                                         {44100, 2},
                                         {48000, 6},
                                         {57600, 1},
                                         {96000, 2},
                                         {192000, 1}}) {
        Audio audio = MakeSpeech(rate, channels, 2.0);
        audio.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
        WriteAudio(input, audio);
        const auto repair = [&](const std::string& level) {
            Succeed({input, "-fqo", folder / "out.wav", "--sensitivity", "9"},
                    {.environment = {"PUFFGUARD_CPU=" + level}});
            return ReadBytes(folder / "out.wav");
        };
        const Bytes expected{repair("baseline")};
        EXPECT_NE(expected, Bytes{ReadBytes(input)}) << "nothing was repaired";
        // What the processor lacks is as good as the best that it has, and so is what nobody knows.
        for (const char* const level : {"v3", "v4", "v9000", ""}) {
            EXPECT_EQ(Bytes{repair(level)}, expected) << rate << ' ' << level;
        }
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
        EXPECT_EQ(outcome.exitCode, -number);
        EXPECT_EQ(folder.List(), Words{"talk.wav"});
    }
}

} // namespace
