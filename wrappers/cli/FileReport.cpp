// SPDX-License-Identifier: ISC
#include "wrappers/cli/FileReport.h"

#include "wrappers/cli/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Cli {

namespace {

std::string Counted(uint64_t count, const char* noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

nlohmann::ordered_json ToJson(const FileReport& report)
{
    nlohmann::ordered_json json;
    json["file"] = ToUtf8(report.input);
    json["status"] = report.failure.empty() ? "ok" : "failed";
    if (!report.failure.empty()) {
        json["reason"] = ToUtf8(report.failure);
        return json;
    }
    json["output"] = report.output.empty() ? nlohmann::ordered_json()
                                           : nlohmann::ordered_json(ToUtf8(report.output));
    json["sampleRate"] = report.sampleRate;
    json["channels"] = report.channels;
    json["frames"] = report.frames;
    json["duration"] = report.GetDuration();
    json["latency"] = report.latency;
    json["prominent"] = report.events.prominent;
    json["repairs"] = report.events.repairs;
    json["strongest"] = nullptr;
    if (report.events.strongest) {
        json["strongest"] = {{"time", report.events.strongest->time},
                             {"removed", report.events.strongest->removed},
                             {"reduction", report.events.strongest->reduction}};
    }
    json["nonFiniteSamples"] = report.nonFiniteSamples;
    json["seconds"] = report.seconds;
    json["timesRealTime"] = report.GetSpeed();
    return json;
}

} // namespace

std::string SummaryLine(const FileReport& report)
{
    std::string line = fmt::format("{}: {}, {}",
                                   report.input == "-" ? "stdin" : Printable(report.input),
                                   Counted(report.events.prominent, "prominent plosive"),
                                   Counted(report.events.repairs, "repair"));
    if (report.events.strongest) {
        line += fmt::format("; strongest at {} ({:+.1f} dB of the average, taken down {:.1f} dB)",
                            FormatClock(report.events.strongest->time),
                            report.events.strongest->removed,
                            -report.events.strongest->reduction);
    }
    line += fmt::format("; {:.0f}x real time", report.GetSpeed());
    if (!report.output.empty() && report.output != "-") {
        line += " -> " + Printable(report.output);
    }
    return line;
}

std::string SummaryJson(const std::vector<FileReport>& reports)
{
    nlohmann::ordered_json json;
    json["version"] = PUFFGUARD_VERSION;
    json["files"] = nlohmann::ordered_json::array();
    size_t failed = 0;
    for (const FileReport& report : reports) {
        json["files"].push_back(ToJson(report));
        failed += report.failure.empty() ? 0 : 1;
    }
    json["failed"] = failed;
    return json.dump(2) + "\n";
}

} // namespace Cli
