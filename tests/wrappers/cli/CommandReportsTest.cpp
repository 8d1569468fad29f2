// SPDX-License-Identifier: ISC
#include "tests/wrappers/cli/support/CommandFixture.h"
#include "wrappers/cli/effect/Controls.h"

#include <cmath>
#include <sstream>

namespace {

using namespace CliTest;

class CommandReports : public CommandFixture {
protected:
    CommandReports()
        : CommandFixture(MakeSpeech(48000, 2))
    {
    }

    Json Events() const { return Json::parse(ReadBytes(folder / "e.json")); }

    // The strong bursts of MakeSpeech() begin at 0.6, 1.6 and 2.6 s and last 60 ms.
    static void ExpectEachBurst(const Json& events)
    {
        for (const double begin : {0.6, 1.6, 2.6}) {
            EXPECT_TRUE(std::any_of(events.begin(), events.end(), [&](const Json& event) {
                return event["prominent"] && event["time"] > begin - 0.04 &&
                       event["time"] < begin + 0.1;
            })) << begin;
        }
    }

    // A row and a clip for each prominent event, in order.
    static void ExpectRows(const std::string& page, const Json& events)
    {
        constexpr std::string_view Begin = "id=\"data\">";
        const size_t at = page.find(Begin) + Begin.size();
        const Json rows = Json::parse(page.substr(at, page.find("</script>", at) - at))["events"];
        size_t next = 0;
        for (const Json& event : events) {
            if (event["prominent"]) {
                ASSERT_LT(next, rows.size());
                const Json& row = rows[next];
                EXPECT_EQ(row["time"], event["time"]);
                EXPECT_NEAR(row["after"].get<double>() - row["before"].get<double>(),
                            event["reduction"].get<double>(),
                            1e-9);
                const std::string clip = "id=\"clip-" + std::to_string(next++) + "\"";
                EXPECT_NE(page.find(clip), std::string::npos);
            }
        }
        EXPECT_EQ(rows.size(), next);
    }

    // A line for each prominent event, in order.
    static void ExpectLabels(const std::string& labels, const Json& events)
    {
        std::istringstream lines(labels);
        std::string text;
        size_t faint = 0;
        for (const Json& event : events) {
            if (!event["prominent"]) {
                ++faint;
                continue;
            }
            double start = 0;
            double end = 0;
            ASSERT_TRUE(lines >> start >> end && std::getline(lines, text));
            EXPECT_NEAR(start, event["start"].get<double>(), 1e-6);
            EXPECT_NEAR(end, event["end"].get<double>(), 1e-6);
        }
        EXPECT_FALSE(std::getline(lines, text));
        EXPECT_GT(faint, 0U);
    }
};

TEST_F(CommandReports, OfADryRunAgreeAndHoldTheWholeSchema)
{
    const Words all = {
        "--events", "e.json", "--labels", "l.txt", "--plot", "p.png", "--report", "r.html"};
    const Outcome outcome = Succeed(Join({"talk.wav", "-n"}, all), {.folder = folder.GetPath()});
    EXPECT_EQ(folder.List(), (Words{"e.json", "l.txt", "p.png", "r.html", "talk.wav"}));
    EXPECT_EQ(ReadBytes(folder / "p.png").substr(0, 4), "\x89PNG");
    // A pipe shows no progress.
    EXPECT_EQ(outcome.err, "");
    EXPECT_NE(outcome.out.find("prominent plosives, "), std::string::npos) << outcome.out;
    EXPECT_EQ(outcome.out.find('\033'), std::string::npos);
    EXPECT_EQ(std::count(outcome.out.begin(), outcome.out.end(), '\n'), 1);
    const Json json = Events();
    EXPECT_EQ(json.size(), 8U);
    EXPECT_TRUE(json["changed"].is_object());
    EXPECT_EQ(json["file"], "talk.wav");
    EXPECT_EQ(json["sampleRate"], 48000);
    EXPECT_EQ(json["channels"], 2);
    EXPECT_EQ(json["frames"], 144000);
    EXPECT_GT(json["latency"], 0);
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
    ExpectEachBurst(json["events"]);
    ExpectLabels(ReadBytes(folder / "l.txt"), json["events"]);
    ExpectRows(ReadBytes(folder / "r.html"), json["events"]);
}

TEST_F(CommandReports, EachControlIsThatOfTheModuleAndReported)
{
    Words words = {"--print-params", "--json", "--bypass"};
    Json expected = {{"bypass", true}};
    for (const Cli::Control& control : Cli::ControlTable) {
        const double value = control.least + (control.most - control.least) / 4;
        words.insert(words.end(), {control.option, std::to_string(value)});
        expected[control.member] = value;
    }
    size_t found = 0;
    const Json printed = Json::parse(Say(words));
    for (const Json& parameter : printed["parameters"]) {
        for (const Cli::Control& control : Cli::ControlTable) {
            if (parameter["name"] == control.parameter) {
                ++found;
                EXPECT_EQ(parameter["minimum"], control.least) << control.option;
                EXPECT_EQ(parameter["maximum"], control.most) << control.option;
                EXPECT_EQ(parameter["value"], expected[control.member]) << control.option;
                EXPECT_TRUE(parameter["changed"]) << control.option;
            }
        }
    }
    EXPECT_EQ(found, Cli::ControlTable.size());
    Succeed(Join(words, {input, "-n", "--events", folder / "e.json"}));
    EXPECT_EQ(Events()["parameters"], expected);
    EXPECT_TRUE(Events()["events"].empty()) << "in spite of the bypass";
    EXPECT_EQ(Events()["changed"].size(), found) << "of a session, to which no bypass belongs";
    EXPECT_EQ(Events()["changed"]["PuffGuard.Strength"], "2.5");
    Succeed({input, "-nf", "--events", folder / "e.json"});
    EXPECT_TRUE(Events()["changed"].empty());
}

TEST_F(CommandReports, WhatLiesBehindTheEndIsNoEvent)
{
    // Cut off as a burst begins: the silence that brings out the rest makes a peak of it, which two
    // of these lengths show behind the end.
    for (int i = 0; i < 8; ++i) {
        const double seconds = 1.6 + i * 0.0025;
        WriteAudio(folder / "cut.wav", MakeSpeech(48000, 1, seconds));
        Succeed({folder / "cut.wav", "-nf", "--events", folder / "e.json"});
        const Json json = Events();
        for (const Json& event : json["events"]) {
            EXPECT_LT(event["time"].get<double>(), seconds);
        }
    }
}

TEST_F(CommandReports, OfSeveralRecordingsStandInOrderAndAgreeWithTheSummary)
{
    const std::string second = folder / "b.wav";
    WriteAudio(second, MakeSpeech(16000, 1, 1.0));
    const Outcome outcome = RunPuffguard(
        {input, folder / "none.wav", second, "-nj2", "--json", "--events", folder / "e.json"});
    EXPECT_EQ(outcome.exitCode, 1);
    const Json json = Events();
    ASSERT_EQ(json.size(), 2U);
    EXPECT_EQ(json[0]["file"], input);
    EXPECT_EQ(json[1]["file"], second);
    const Json& events = json[0]["events"];
    const Json summary = Json::parse(outcome.out);
    EXPECT_EQ(summary["failed"], 1);
    ASSERT_EQ(summary["files"].size(), 3U);
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
    const Words reports = {"--events",
                           folder / "e.json",
                           "--labels",
                           folder / "l.txt",
                           "--plot",
                           folder / "p.png",
                           "--report",
                           folder / "r.html"};
    ExpectRefusal(Join({MakeCutRecording()}, reports), 1, "cut.flac");
    ExpectRefusal({input, "-n", "--report", "/dev/full"}, 1, "/dev/full: No space left");
}

TEST_F(CommandReports, PagesHaveAnIndexAndAreTheSameHoweverTheRunIsCut)
{
    WriteAudio(folder / "b.wav", MakeSpeech(16000, 1, 1.0));
    const Words both = {input, folder / "b.wav", "-n", "--keep-latency"};
    Succeed(Join(both, {"-j1", "--report", folder / "one"}));
    Succeed(Join(both, {"-j2", "--block", "777", "--report", folder / "two/{name}.html"}));
    for (const char* name : {"index.html", "talk.html", "b.html"}) {
        const std::string page = ReadBytes(folder / "one/" + name);
        EXPECT_NE(page, "");
        EXPECT_EQ(Bytes{page}, Bytes{ReadBytes(folder / "two/" + name)}) << name;
    }
    EXPECT_NE(ReadBytes(folder / "one/index.html").find(R"("link":"talk.html")"),
              std::string::npos);
    // One of the recordings would take the index's name.
    WriteAudio(folder / "index.wav", MakeSpeech(16000, 1, 1.0));
    const Outcome clash =
        RunPuffguard({input, folder / "index.wav", "-n", "--report", folder / "x"});
    EXPECT_EQ(clash.exitCode, 1);
    EXPECT_NE(clash.err.find("is already the index of the pages"), std::string::npos) << clash.err;
}

TEST_F(CommandReports, QuietSaysNothingAndHelpAndVersionAnswer)
{
    const Outcome quiet = Succeed({input, "-n", "-q"});
    EXPECT_EQ(quiet.out + quiet.err, "");
    EXPECT_NE(Say({"--help"}).find("Examples:"), std::string::npos);
    EXPECT_TRUE(Say({"--version"}).starts_with("puffguard "));
}

} // namespace
