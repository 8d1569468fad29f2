// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandRunner.h"
#include "tests/wrappers/cli/support/TestFiles.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sstream>

namespace {

using namespace CliTest;
using Json = nlohmann::json;
using Names = std::vector<std::string>;

class CommandReports : public testing::Test {
protected:
    void SetUp() override { WriteAudio(input, MakeSpeech(48000, 2)); }

    Json Events() const { return Json::parse(ReadBytes(folder / "e.json")); }

    TemporaryFolder folder;
    std::string input = folder / "talk.wav";
};

TEST_F(CommandReports, EventsHoldTheWholeSchema)
{
    ASSERT_EQ(
        RunPuffguard({input, "-n", "--events", folder / "e.json", "--strength", "7.5"}).exitCode,
        0);
    const Json json = Events();
    EXPECT_EQ(json.size(), 7U);
    EXPECT_EQ(json["file"], input);
    EXPECT_EQ(json["sampleRate"], 48000);
    EXPECT_EQ(json["channels"], 2);
    EXPECT_EQ(json["frames"], 144000);
    EXPECT_GT(json["latency"], 0);
    EXPECT_EQ(json["parameters"],
              Json({{"sensitivity", 5.0},
                    {"strength", 7.5},
                    {"upperFrequency", 200.0},
                    {"latencyScaling", 1.0},
                    {"bypass", false}}));
    ASSERT_FALSE(json["events"].empty());
    for (const Json& event : json["events"]) {
        EXPECT_EQ(event.size(), 9U);
        EXPECT_LE(event["start"], event["time"]);
        EXPECT_GE(event["end"], event["start"]);
        EXPECT_LT(event["time"], 3.0);
        EXPECT_TRUE(event["severity"] >= 0.0 && event["severity"] <= 1.0);
        EXPECT_EQ(event["voiced"].get<bool>(), event["pitch"].is_number());
        EXPECT_TRUE(event["reduction"].is_number());
        EXPECT_EQ(event["prominent"].get<bool>(), event["removed"] >= 10 * std::log10(0.5));
    }
}

TEST_F(CommandReports, EachBurstIsAProminentEvent)
{
    ASSERT_EQ(RunPuffguard({input, "-n", "--events", folder / "e.json"}).exitCode, 0);
    const Json json = Events();
    // MakeSpeech() has its bursts from 0.6, 1.6 and 2.6 s on, 60 ms long.
    for (const double begin : {0.6, 1.6, 2.6}) {
        EXPECT_TRUE(std::any_of(json["events"].begin(), json["events"].end(), [&](const Json& e) {
            return e["prominent"] && e["time"] > begin - 0.04 && e["time"] < begin + 0.1;
        })) << begin;
    }
}

TEST_F(CommandReports, WhatLiesBehindTheEndIsNoEvent)
{
    // Cut off as a burst begins: the silence that brings out the rest makes a peak of it, which two
    // of these lengths show behind the end.
    for (int i = 0; i < 8; ++i) {
        const double seconds = 1.6 + i * 0.0025;
        WriteAudio(folder / "cut.wav", MakeSpeech(48000, 1, seconds));
        ASSERT_EQ(RunPuffguard({folder / "cut.wav", "-nf", "--events", folder / "e.json"}).exitCode,
                  0);
        const Json json = Events();
        for (const Json& event : json["events"])
            EXPECT_LT(event["time"].get<double>(), seconds);
    }
}

TEST_F(CommandReports, SeveralRecordingsGiveAnArrayInOrder)
{
    WriteAudio(folder / "b.wav", MakeSpeech(16000, 1, 1.0));
    ASSERT_EQ(RunPuffguard({input,
                            folder / "missing.wav",
                            folder / "b.wav",
                            "-n",
                            "--events",
                            folder / "e.json",
                            "-j2"})
                  .exitCode,
              1);
    const Json json = Events();
    ASSERT_EQ(json.size(), 2U);
    EXPECT_EQ(json[0]["file"], input);
    EXPECT_EQ(json[1]["file"], folder / "b.wav");
}

TEST_F(CommandReports, BypassRepairsNothing)
{
    ASSERT_EQ(RunPuffguard({input, "-n", "--bypass", "--events", folder / "e.json"}).exitCode, 0);
    EXPECT_TRUE(Events()["events"].empty());
    EXPECT_TRUE(Events()["parameters"]["bypass"].get<bool>());
}

TEST_F(CommandReports, LabelsShowTheProminentOnes)
{
    ASSERT_EQ(
        RunPuffguard({input, "-n", "--events", folder / "e.json", "--labels", folder / "l.txt"})
            .exitCode,
        0);
    std::istringstream lines(ReadBytes(folder / "l.txt"));
    std::string line;
    const Json json = Events();
    size_t faint = 0;
    for (const Json& event : json["events"]) {
        if (!event["prominent"]) {
            ++faint;
            continue;
        }
        ASSERT_TRUE(std::getline(lines, line));
        char* rest = nullptr;
        EXPECT_NEAR(std::strtod(line.c_str(), &rest), event["start"].get<double>(), 1e-6);
        ASSERT_EQ(*rest, '\t');
        EXPECT_NEAR(std::strtod(rest, &rest), event["end"].get<double>(), 1e-6);
        EXPECT_EQ(*rest, '\t');
    }
    EXPECT_FALSE(std::getline(lines, line));
    EXPECT_GT(faint, 0U);
}

TEST_F(CommandReports, DryRunWritesReportsAndNoAudio)
{
    const Outcome outcome = RunPuffguard({input, "-n", "--plot", folder / "p.png"});
    ASSERT_EQ(outcome.exitCode, 0) << outcome.err;
    EXPECT_EQ(folder.List(), (Names{"p.png", "talk.wav"}));
    EXPECT_EQ(ReadBytes(folder / "p.png").substr(0, 4), "\x89PNG");
    EXPECT_NE(outcome.out.find("prominent plosives, "), std::string::npos) << outcome.out;
}

TEST_F(CommandReports, SummaryJsonAgreesWithTheEvents)
{
    const Outcome outcome =
        RunPuffguard({input, folder / "none.wav", "-n", "--json", "--events", folder / "e.json"});
    EXPECT_EQ(outcome.exitCode, 1);
    const Json summary = Json::parse(outcome.out);
    const Json events = Events()[0]["events"];
    EXPECT_EQ(summary["failed"], 1);
    ASSERT_EQ(summary["files"].size(), 2U);
    const Json& file = summary["files"][0];
    EXPECT_EQ(file["status"], "ok");
    EXPECT_EQ(file["repairs"], events.size());
    EXPECT_EQ(file["prominent"], std::count_if(events.begin(), events.end(), [](const Json& e) {
                  return e["prominent"].get<bool>();
              }));
    const auto strongest =
        std::max_element(events.begin(), events.end(), [](const Json& a, const Json& b) {
            return a["removed"] < b["removed"];
        });
    EXPECT_EQ(file["strongest"]["time"], (*strongest)["time"]);
    EXPECT_EQ(summary["files"][1]["status"], "failed");
    EXPECT_NE(summary["files"][1]["reason"], "");
}

TEST_F(CommandReports, AFailureLeavesNoReport)
{
    Audio audio = MakeSpeech(48000, 1, 20.0);
    audio.format = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;
    WriteAudio(folder / "cut.flac", audio);
    WriteBytes(folder / "cut.flac", ReadBytes(folder / "cut.flac").substr(0, 300'000));
    const Names before = folder.List();
    EXPECT_EQ(RunPuffguard({folder / "cut.flac",
                            "--events",
                            folder / "e.json",
                            "--labels",
                            folder / "l.txt",
                            "--plot",
                            folder / "p.png"})
                  .exitCode,
              1);
    EXPECT_EQ(folder.List(), before);
}

TEST_F(CommandReports, QuietSaysNothingAndPipesShowNoProgress)
{
    const Outcome quiet = RunPuffguard({input, "-n", "-q"});
    EXPECT_EQ(quiet.out + quiet.err, "");
    const Outcome plain = RunPuffguard({input, "-n"});
    EXPECT_EQ(plain.err, "");
    EXPECT_EQ(plain.out.find('\033'), std::string::npos);
    EXPECT_EQ(std::count(plain.out.begin(), plain.out.end(), '\n'), 1);
}

TEST_F(CommandReports, HelpAndVersionAnswer)
{
    const Outcome help = RunPuffguard({"--help"});
    EXPECT_EQ(help.exitCode, 0);
    EXPECT_NE(help.out.find("Examples:"), std::string::npos);
    const Outcome version = RunPuffguard({"--version"});
    EXPECT_EQ(version.exitCode, 0);
    EXPECT_TRUE(version.out.starts_with("puffguard ")) << version.out;
}

} // namespace
