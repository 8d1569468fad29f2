// SPDX-License-Identifier: ISC
// The automatic repair as users run it, on a synthetic voice with bursts whose places are known.
#include "tests/wrappers/cli/support/CommandFixture.h"

#include <cmath>
#include <limits>
#include <numbers>
#include <random>

namespace {

using namespace CliTest;

// Where the voice parts its lips, in seconds: before each a burst is added.
constexpr std::array Bursts = {0.447, 1.024, 2.557, 2.933, 3.423, 4.846, 5.501, 6.145};
// Beside the span of an event, half a repair's window and a hop are changed at most.
constexpr double Reach = 0.025;

const Audio& Voice()
{
    static const Audio Recorded = ReadAudio(PUFFGUARD_VOICE);
    return Recorded;
}

/// The voice with bursts of 30 to 90 ms, two swings each, -2 to -10 dB at their peaks.
Audio Mix(unsigned seed, int format)
{
    std::mt19937 random(seed);
    const auto between = [&](double least, double most) {
        return least + (most - least) * static_cast<double>(random()) / 4294967296.0;
    };
    Audio mix = Voice();
    mix.format = format;
    for (const double start : Bursts) {
        const double width = between(0.03, 0.09);
        const double level = between(0.3, 0.8);
        const double frequency = between(1.6, 2.6) / width;
        const auto first = static_cast<size_t>((start + 0.015) * mix.sampleRate);
        const auto end =
            std::min(mix.samples.size(), first + static_cast<size_t>(2.2 * width * mix.sampleRate));
        for (size_t i = first; i < end; ++i) {
            const double time = static_cast<double>(i - first) / mix.sampleRate;
            const double envelope =
                (1 - std::exp(-time / 0.004)) * std::exp(-1.6 * std::pow(time / width, 2));
            const double turns = frequency * time * (1 - 0.175 * std::min(time / width, 1.0));
            mix.samples[i] += level * envelope * std::sin(2 * std::numbers::pi * turns);
        }
    }
    for (double& sample : mix.samples) {
        sample *= 0.6; // stays below full scale
    }
    return mix;
}

double Energy(const std::vector<double>& a, const std::vector<double>& b, double factor)
{
    double sum = 0;
    for (size_t i = 0; i < a.size(); ++i) {
        sum += std::pow(a[i] - factor * b[i], 2);
    }
    return sum;
}

class CommandAuto : public CommandFixture {
protected:
    CommandAuto()
        : CommandFixture(Mix(1, SF_FORMAT_WAV | SF_FORMAT_PCM_16))
    {
    }

    Json
    RepairWithEvents(const std::string& file, const std::string& output, const Words& more = {})
    {
        const std::string events = folder / "events.json";
        Succeed(Join({file, "--auto", "-f", "-q", "-o", output, "--events", events}, more));
        return Json::parse(std::ifstream(events));
    }

    static void ExpectUntouchedOutside(const Json& events, const Audio& before, const Audio& after)
    {
        ASSERT_EQ(before.samples.size(), after.samples.size());
        std::vector<bool> isInside(before.GetFrames());
        for (const Json& event : events) {
            const double rate = before.sampleRate;
            const double first = (event.at("start").get<double>() - Reach) * rate;
            const double end = (event.at("end").get<double>() + Reach) * rate;
            for (auto i = static_cast<size_t>(std::max(first, 0.0));
                 i < std::min(static_cast<size_t>(end), isInside.size());
                 ++i) {
                isInside[i] = true;
            }
        }
        const auto channels = static_cast<size_t>(before.channels);
        size_t changed = 0;
        for (size_t i = 0; i < before.samples.size(); ++i) {
            changed += !isInside[i / channels] && before.samples[i] != after.samples[i] ? 1 : 0;
        }
        EXPECT_EQ(changed, 0U);
    }
};

TEST_F(CommandAuto, PopsOfThreeMixesAreFoundAndTakenAwayAndTheRestStaysBitForBit)
{
    const std::array formats = {SF_FORMAT_WAV | SF_FORMAT_PCM_16,
                                SF_FORMAT_FLAC | SF_FORMAT_PCM_24,
                                SF_FORMAT_AIFF | SF_FORMAT_FLOAT};
    const std::array extensions = {".wav", ".flac", ".aiff"};
    for (size_t i = 0; i < formats.size(); ++i) {
        const std::string file = folder / ("mix" + std::to_string(i) + extensions[i]);
        WriteAudio(file, Mix(static_cast<unsigned>(i) + 1, formats[i]));
        const Audio before = ReadAudio(file);
        const std::string output = folder / ("out" + std::string(extensions[i]));
        const Json events = RepairWithEvents(file, output, {"--dither"}).at("events");
        const Audio after = ReadAudio(output);
        EXPECT_EQ(after.format, formats[i]);
        ExpectUntouchedOutside(events, before, after);
        const auto isIn = [](double time, const Json& event) {
            return time > event.at("start").get<double>() - 0.05 &&
                   time < event.at("end").get<double>() + 0.02;
        };
        size_t found = 0;
        for (const double burst : Bursts) {
            found += std::any_of(events.begin(),
                                 events.end(),
                                 [&](const Json& event) { return isIn(burst + 0.03, event); })
                         ? 1
                         : 0;
        }
        EXPECT_GE(found, Bursts.size() - 1) << events;
        EXPECT_LE(events.size(), Bursts.size() + 1) << events;
        EXPECT_LT(Energy(after.samples, Voice().samples, 0.6),
                  0.1 * Energy(before.samples, Voice().samples, 0.6)); // 10 dB
    }
}

TEST_F(CommandAuto, BlocksJobsAndPipesChangeNoByte)
{
    const std::string second = folder / "second.wav";
    WriteAudio(second, Mix(2, SF_FORMAT_WAV | SF_FORMAT_PCM_24));
    const Words both = {input, second, "--auto", "-q"};
    Succeed(Join(both, {"-j1", "-O", folder / "one", "--report", folder / "pages/"}));
    Succeed(Join(both,
                 {"-j2", "--block", "333", "-O", folder / "two", "--report", folder / "pages2/"}));
    for (const std::string name : {"talk.html", "second.html", "index.html"}) {
        EXPECT_EQ(Bytes{ReadBytes(folder / "pages/" + name)},
                  Bytes{ReadBytes(folder / "pages2/" + name)})
            << name;
    }
    const Bytes expected{ReadBytes(folder / "one/talk.wav")};
    EXPECT_EQ(Bytes{ReadBytes(folder / "two/talk.wav")}, expected);
    EXPECT_EQ(Bytes{ReadBytes(folder / "two/second.wav")},
              Bytes{ReadBytes(folder / "one/second.wav")});
    const Outcome piped = Succeed({"-", "--auto"}, {.input = ReadBytes(input)});
    WriteBytes(folder / "piped.wav", piped.out);
    EXPECT_EQ(ReadAudio(folder / "piped.wav").samples, ReadAudio(folder / "one/talk.wav").samples);
    EXPECT_NE(piped.err.find("stdin: kept in a temporary file"), std::string::npos) << piped.err;
    // The page shows the recording before and after, whatever the audio is.
    const std::string page = folder / "difference.html";
    Succeed(
        {input, "--auto", "-q", "--difference", "-o", folder / "difference.wav", "--report", page});
    EXPECT_EQ(ReadBytes(page), ReadBytes(folder / "pages/talk.html"));
    const Audio before = ReadAudio(input);
    const Audio after = ReadAudio(folder / "one/talk.wav");
    const Audio difference = ReadAudio(folder / "difference.wav");
    for (size_t i = 0; i < before.samples.size(); ++i) {
        ASSERT_EQ(after.samples[i] + difference.samples[i], before.samples[i]);
    }
    Succeed({input, "--auto", "-q", "--in-place"});
    EXPECT_EQ(Bytes{ReadBytes(input)}, expected);
}

TEST_F(CommandAuto, LabelsThatAUserLeavesAreRepairedInTheSameWayAndNothingElse)
{
    const std::string labels = folder / "pops.txt";
    const std::string output = folder / "auto.wav";
    const Json found = RepairWithEvents(input, output).at("events");
    const std::string page = folder / "r.html";
    Succeed({input, "--auto", "--dry-run", "-q", "--labels", labels, "--report", page});
    const std::string last = "id=\"clip-" + std::to_string(found.size() - 1) + "\"";
    EXPECT_NE(ReadBytes(page).find(last), std::string::npos);
    EXPECT_EQ(ReadBytes(page).find("id=\"clip-" + std::to_string(found.size()) + "\""),
              std::string::npos);
    Succeed({input, "-q", "-o", folder / "labelled.wav", "--repair-labels", labels});
    EXPECT_EQ(ReadAudio(folder / "labelled.wav").samples, ReadAudio(output).samples);
    // One label is left, and reaches no further than 100 Hz.
    std::string text = ReadBytes(labels);
    text.resize(text.find('\n') + 1);
    WriteBytes(labels, text + "\\\t20.0\t100.0\n");
    const std::string events = folder / "one.json";
    Succeed({input, "-fq", "-o", output, "--repair-labels", labels, "--events", events});
    const Json report = Json::parse(std::ifstream(events));
    ASSERT_EQ(report.at("events").size(), 1U);
    const Json& event = report.at("events")[0];
    EXPECT_EQ(event.at("upperFrequency"), 100);
    EXPECT_TRUE(event.at("keep").is_null());
    EXPECT_NEAR(event.at("start"), found[0].at("start"), 1e-6);
    ExpectUntouchedOutside(report.at("events"), ReadAudio(input), ReadAudio(output));
    EXPECT_NE(ReadAudio(output).samples, ReadAudio(input).samples);
}

TEST_F(CommandAuto, LabelTracksThatMakeNoSenseAreRefusedWithTheLine)
{
    const std::string labels = folder / "pops.txt";
    const std::string binary(100000, 'x'); // a file of another kind
    const std::array<std::pair<const char*, std::string>, 13> tracks = {{
        {"0.1\t0.2\tp\nabc\t0.5\tp\n", "line 2: the start \"abc\" is no number"},
        {binary.c_str(), "the start \"" + std::string(40, 'x') + "...\" is no number"},
        {"0.1\t\tp\n", "line 1: the end \"\" is no number"},
        {"0.1 0.2 p\n", "line 1: the start \"0.1 0.2 p\" is no number"},
        {"0.1\tnan\tp\n", "line 1: the end \"nan\" is no number"},
        {"0.1\t0.2\tp\n99\t99.1\tp\n", "line 2: begins behind the end of the recording"},
        {"6\t7.5\tp\n", "line 1: ends behind the end of the recording"},
        {"0.1\t0.3\tp\n0.2\t0.4\tp\n", "line 2: overlaps the label of line 1"},
        {"0.1\t0.1\tp\n", "line 1: is empty: it ends where it begins"},
        {"0.3\t0.1\tp\n", "line 1: ends before it begins"},
        {"-1\t0.1\tp\n", "line 1: begins before the recording"},
        {"\\\t20\t100\n", "line 1: a range of frequencies without a label before it"},
        {"0.1\t0.2\tp\n\\\t20\t9000\n",
         "line 2: the upper frequency 9000 Hz is outside 50 to 1500 Hz"},
    }};
    for (const auto& [text, reason] : tracks) {
        WriteBytes(labels, text);
        ExpectRefusal({input, "--repair-labels", labels}, 1, reason);
    }
    ExpectRefusal({input, "--repair-labels", folder / "none.txt"}, 1, "No such file");
    ExpectRefusal(
        {input, "--auto", "--sensitivity", "7"}, 2, "--strictness makes --auto repair less");
    ExpectRefusal({input, "--auto", "--repair-labels", labels}, 2, "exclude each other");
    ExpectRefusal({input, "--strictness", "1"}, 2, "--strictness needs --auto");
    ExpectRefusal({input, "--auto", "--strictness", "3.5"}, 2, "outside -3 to 3");
    ExpectRefusal({input, "--auto", "--preset", "Strong"}, 2, "presets and sessions");
}

TEST_F(CommandAuto, WhatHoldsNoSpeechComesOutAsItWas)
{
    Audio audio = Voice();
    audio.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    const auto expectUnchanged = [&](const char* name) {
        WriteAudio(input, audio);
        Succeed({input, "--auto", "-fq", "-o", folder / "out.wav"});
        EXPECT_EQ(ReadAudio(folder / "out.wav").samples, audio.samples) << name;
    };
    for (const size_t frames : {size_t{1}, size_t{1000}, size_t{6615}}) {
        audio.samples.assign(Voice().samples.begin(),
                             Voice().samples.begin() + static_cast<std::ptrdiff_t>(frames));
        expectUnchanged("a short one");
    }
    audio.samples.assign(88200, 0.25);
    expectUnchanged("a constant");
    // No finite numbers: taken for silence, and mentioned.
    audio.samples[44100] = std::nan("");
    audio.samples[44101] = -std::numeric_limits<double>::infinity();
    WriteAudio(input, audio);
    const Outcome outcome = Succeed({input, "--auto", "-f", "-o", folder / "out.wav"});
    EXPECT_NE(outcome.err.find("2 samples were no finite number"), std::string::npos)
        << outcome.err;
    audio.samples.clear();
    WriteAudio(input, audio);
    ExpectRefusal({input, "--auto"}, 1, "holds no samples");
}

TEST_F(CommandAuto, ABassDrumIsMentionedAndSpeechIsNot)
{
    const std::string page = folder / "drum.html";
    for (const int beatsAMinute : {80, 97, 120, 160}) {
        // Three bars in four: kicks on beats 1 and 3 and an eighth before 3; then a bar's pause.
        Audio drum = Voice();
        drum.format = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
        drum.samples.assign(static_cast<size_t>(20 * drum.sampleRate), 0.0);
        std::mt19937 random(7);
        for (size_t i = 0; i < drum.samples.size(); ++i) {
            const double time = static_cast<double>(i) / drum.sampleRate;
            const double beats = time * beatsAMinute / 60;
            const double inBar = std::fmod(beats, 4);
            const double since = inBar < 1.5 ? inBar : inBar < 2 ? inBar - 1.5 : inBar - 2;
            const double kick = since * 60 / beatsAMinute;
            const double hiss = static_cast<double>(random()) / 4294967296.0 - 0.5;
            const bool isPause = std::fmod(beats, 16) >= 12;
            drum.samples[i] = (isPause ? 0.0 : 0.6) * std::exp(-kick / 0.08) *
                                  (1 - std::exp(-kick / 0.003)) *
                                  std::sin(2 * std::numbers::pi * (55 * kick)) +
                              0.02 * hiss +
                              0.1 * std::sin(2 * std::numbers::pi * 440 * time) *
                                  std::pow(std::sin(std::numbers::pi * beats), 2);
        }
        WriteAudio(input, drum);
        const Outcome outcome =
            Succeed({input, "--auto", "--dry-run", "--json", "--report", page, "-f"});
        EXPECT_NE(outcome.err.find("sounds like music"), std::string::npos)
            << beatsAMinute << outcome.out;
        EXPECT_NE(ReadBytes(page).find("This recording sounds like music"), std::string::npos);
        const Json beat = Json::parse(outcome.out).at("files")[0].at("automatic").at("beat");
        EXPECT_NEAR(beat.get<double>(), 30.0 / beatsAMinute, 0.002);
    }
    // A voice that pops often enough to say: the mix three times.
    Audio speech = Mix(1, SF_FORMAT_WAV | SF_FORMAT_PCM_16);
    const std::vector<double> once = speech.samples;
    speech.samples.insert(speech.samples.end(), once.begin(), once.end());
    speech.samples.insert(speech.samples.end(), once.begin(), once.end());
    WriteAudio(input, speech);
    const Outcome outcome = Succeed({input, "--auto", "--dry-run"});
    EXPECT_EQ(outcome.err, "");
}

TEST_F(CommandAuto, ChannelsAreRepairedEachForItself)
{
    // The second one silent, or the first with its polarity reversed.
    for (const double factor : {0.0, -1.0}) {
        Audio stereo = Mix(3, SF_FORMAT_WAV | SF_FORMAT_PCM_24);
        std::vector<double> both;
        for (const double sample : stereo.samples) {
            both.push_back(sample);
            both.push_back(factor * sample);
        }
        stereo.samples = both;
        stereo.channels = 2;
        WriteAudio(input, stereo);
        const Json events = RepairWithEvents(input, folder / "out.wav").at("events");
        EXPECT_GE(events.size(), Bursts.size() - 2);
        const Audio after = ReadAudio(folder / "out.wav");
        for (size_t i = 0; i < after.samples.size(); i += 2) {
            // The samples' rounding makes the channels differ by a step or two of 24 bits, and what
            // single precision makes of that in a repair stays below -114 dBFS.
            ASSERT_NEAR(after.samples[i + 1], factor * after.samples[i], 0x1p-19);
        }
    }
}

} // namespace
