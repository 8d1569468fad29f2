// SPDX-License-Identifier: ISC
// Repairing regions of a recording, as users run it.
#include "tests/wrappers/cli/support/CommandFixture.h"

#include <array>
#include <fstream>
#include <utility>

namespace {

using namespace CliTest;

/// Three seconds with a burst at 0.6 s of each.
class CommandRegions : public CommandFixture {
protected:
    std::vector<double> Repair(const Words& words, const std::string& file = "out.wav")
    {
        const std::string output = folder / file;
        Succeed(Join({input, "-fq", "-o", output}, words));
        return ReadAudio(output).samples;
    }

    /// First and last frame that differ from the recording; none: the number of frames, twice.
    std::pair<size_t, size_t> FindChange(const std::vector<double>& samples) const
    {
        const std::vector<double>& before = recorded.samples;
        std::pair<size_t, size_t> change = {before.size(), before.size()};
        for (size_t i = 0; i < before.size(); ++i) {
            if (samples[i] != before[i]) {
                change.first = std::min(change.first, i);
                change.second = i;
            }
        }
        return change;
    }

    const Audio recorded = ReadAudio(input);
    const Words strong = {"--strength", "9", "--sensitivity", "8"};
};

TEST_F(CommandRegions, OnlyWhatIsNamedIsRepairedHoweverItIsNamed)
{
    const std::vector<double> plain = Repair(strong);
    EXPECT_EQ(Repair(Join(strong, {"--region", "0-3"})), plain);
    const std::vector<double> repaired = Repair(Join(strong, {"--region", "1.55-1.8"}));
    const auto [first, last] = FindChange(repaired);
    EXPECT_GE(first, 74'400U - 240U); // half of 10 ms before
    EXPECT_LE(last, 86'400U + 240U);
    EXPECT_LT(first, last);
    EXPECT_NE(plain, repaired);
    EXPECT_EQ(Repair(Join(strong, {"--region", "74400s-86400s"})), repaired);
    EXPECT_EQ(Repair(Join(strong, {"--region", "0:01.55-0:00:01.8", "--region", "1.6-1.7"})),
              repaired);
    const std::string labels = folder / "labels.txt";
    WriteBytes(labels, "1.550000\t1.800000\tpop\r\n\\\t-1.000000\t-1.000000\r\n");
    EXPECT_EQ(Repair(Join(strong, {"--regions", labels})), repaired);
    WriteBytes(labels,
               R"([{"file": "else.wav", "events": []}, {"file": ")" + input +
                   R"(", "events": [{"start": 1.55, "end": 1.8}]}])");
    EXPECT_EQ(Repair(Join(strong, {"--regions", labels})), repaired);
    // A moment stands for what is around it, and may hang over the end.
    WriteBytes(labels, R"({"events": [{"start": 2.99, "end": 2.99}, {"start": -1, "end": 9}]})");
    EXPECT_EQ(Repair(Join(strong, {"--regions", labels})), plain);
    EXPECT_EQ(Repair(Join(strong, {"--regions", labels, "--bypass"})), recorded.samples);
    // A wider fade reaches further out.
    const auto wide = FindChange(Repair(Join(strong, {"--region", "1.55-1.8", "--fade", "60"})));
    EXPECT_LT(wide.first, first);
    // Only the band: another sound, in the same place.
    const auto band = Repair(Join(strong, {"--region", "1.55-1.8,0-80"}));
    EXPECT_NE(band, repaired);
    EXPECT_NE(band, recorded.samples);
}

TEST_F(CommandRegions, WhatItFindsItRepairsAndReportsAgree)
{
    const std::string labels = folder / "pops.txt";
    const std::string events = folder / "events.json";
    Succeed(Join({input, "-q", "--dry-run", "--labels", labels, "--events", events}, strong));
    const Json found = Json::parse(std::ifstream(events));
    for (const std::string& list : {labels, events}) {
        const std::string again = folder / "again.json";
        Repair(Join(strong,
                    {"--regions",
                     list,
                     "--events",
                     again,
                     "--plot",
                     folder / "p.png",
                     "--report",
                     folder / "r.html"}));
        const Json repaired = Json::parse(std::ifstream(again));
        ASSERT_FALSE(repaired.at("events").empty());
        for (const Json& event : repaired.at("events")) {
            const auto isNear = [&](const Json& other) {
                return std::abs(other.at("time").get<double>() - event.at("time").get<double>()) <
                       0.05;
            };
            EXPECT_TRUE(std::any_of(found.at("events").begin(), found.at("events").end(), isNear))
                << event;
        }
        EXPECT_FALSE(ReadBytes(folder / "p.png").empty());
    }
}

TEST_F(CommandRegions, JobsPipesAndDifferenceChangeNoByteAndNothingIsRoundedAnew)
{
    Audio fine = recorded;
    fine.format = SF_FORMAT_WAV | SF_FORMAT_PCM_24;
    const std::string second = folder / "second.wav";
    WriteAudio(second, fine);
    const Words region = Join(strong, {"--region", "1.55-1.8", "--dither", "-q"});
    Succeed(Join({input, second, "-j1", "-O", folder / "one"}, region));
    Succeed(Join({input, second, "-j2", "--block", "333", "-O", folder / "two"}, region));
    for (const std::string name : {"talk.wav", "second.wav"}) {
        EXPECT_EQ(Bytes{ReadBytes(folder / "one/" + name)},
                  Bytes{ReadBytes(folder / "two/" + name)});
    }
    const Audio made = ReadAudio(folder / "one/talk.wav");
    const auto [first, last] = FindChange(made.samples);
    EXPECT_GE(first, 74'160U);
    EXPECT_LE(last, 86'640U);
    const Outcome piped = Succeed(Join({"-", "-o", "-"}, region), {.input = ReadBytes(input)});
    WriteBytes(folder / "piped.wav", piped.out);
    EXPECT_EQ(ReadAudio(folder / "piped.wav").samples, made.samples);
    const auto difference = Repair(Join(region, {"--difference"}), "difference.wav");
    for (size_t i = 0; i < difference.size(); ++i) {
        ASSERT_EQ(made.samples[i] + difference[i], recorded.samples[i]);
    }
}

TEST_F(CommandRegions, WhatMakesNoSenseIsRefusedByName)
{
    const std::string labels = folder / "labels.txt";
    const std::array<std::pair<const char*, const char*>, 9> bad = {{
        {"1", "a region is START-END"},
        {"a-2", "\"a\" is no time"},
        {"1:60-2:00", "\"1:60\" is no time"},
        {"2-1", "ends before it begins"},
        {"1-1", "is empty: it ends where it begins"},
        {"1-2,300-200", "the lower frequency is not below the upper one"},
        {"1-2,5", "frequencies are LOW-HIGH"},
        {"1.5s-7s", "\"1.5s\" is no time"},
        {"1-2,0-0", "the upper frequency is 0"},
    }};
    for (const auto& [region, reason] : bad) {
        ExpectRefusal({input, "--region", region}, 2, reason);
    }
    ExpectRefusal({input, "--region", "2.9-3.2"}, 1, "ends behind the end of the recording");
    ExpectRefusal({input, "--region", "1-2,24000-0.5"}, 2, "not below");
    ExpectRefusal({input, "--region", "1-2,24000-30000"}, 1, "lies above half the sample rate");
    ExpectRefusal({input, "--region", "1-2", "--auto"}, 2, "belong to the effect");
    ExpectRefusal({input, "--fade", "5"}, 2, "--fade needs --region");
    ExpectRefusal({input, "--region", "1-2", "--fade", "-1"}, 2, "outside 0 to 10000");
    ExpectRefusal({input, "--region", "1-2", "--keep-latency"}, 2, "no latency to keep");
    const std::array<std::pair<const char*, const char*>, 5> tracks = {{
        {"1\t2\tp\nx\t2\tp\n", "line 2: the start \"x\" is no number"},
        {"1\t2\tp\n\n2\t1\tp\n", "line 3: ends before it begins"},
        {"1\t1\tp\n", "line 1: is empty"},
        {"9\t10\tp\n", "line 1: begins behind the end of the recording"},
        {"{\"events\": 5}", "is no list of events"},
    }};
    for (const auto& [text, reason] : tracks) {
        WriteBytes(labels, text);
        ExpectRefusal({input, "--regions", labels}, 1, reason);
    }
    ExpectRefusal({input, "--regions", folder / "none.txt"}, 1, "No such file");
}

} // namespace
