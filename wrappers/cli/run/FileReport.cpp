// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/FileReport.h"

#include "wrappers/cli/text/Text.h"
#include "wrappers/cli/text/Version.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

namespace Cli {

namespace {

using Kind = Wrapper::Parameter::Kind;

std::string Counted(uint64_t count, const char* noun)
{
    return fmt::format("{} {}{}", count, noun, count == 1 ? "" : "s");
}

nlohmann::ordered_json TextOrNull(const std::string& text)
{
    return text.empty() ? nlohmann::ordered_json() : nlohmann::ordered_json(ToUtf8(text));
}

nlohmann::ordered_json ToJson(const Wrapper::Parameter& parameter, double value)
{
    if (parameter.kind == Kind::Switch) {
        return value >= 0.5;
    }
    if (parameter.kind == Kind::Choice) {
        return ToUtf8(FormatValue(parameter, value));
    }
    return value;
}

nlohmann::ordered_json ToJson(const ParameterValue& entry)
{
    const auto& [parameter, value, isChanged] = entry;
    nlohmann::ordered_json json;
    json["name"] = ToUtf8(parameter.identifier);
    json["value"] = ToJson(parameter, value);
    if (parameter.kind == Kind::Number) {
        json["minimum"] = parameter.minimum;
        json["maximum"] = parameter.maximum;
    }
    if (parameter.kind == Kind::Choice) {
        json["values"] = parameter.labels;
    }
    json["default"] = ToJson(parameter, parameter.defaultValue);
    json["unit"] = TextOrNull(parameter.unit);
    json["changed"] = isChanged;
    return json;
}

nlohmann::ordered_json ToJson(const Session& session)
{
    nlohmann::ordered_json json;
    json["version"] = GetVersion();
    json["preset"] = nullptr;
    if (session.preset) {
        json["preset"] = {{"name", ToUtf8(session.preset->name)},
                          {"file", TextOrNull(session.preset->path)}};
    }
    json["savedPreset"] = TextOrNull(session.savedPreset);
    json["savedState"] = TextOrNull(session.savedState.Get());
    if (!session.parameters.empty()) {
        json["parameters"] = nlohmann::ordered_json::array();
        for (const ParameterValue& parameter : session.parameters) {
            json["parameters"].push_back(ToJson(parameter));
        }
    }
    return json;
}

nlohmann::ordered_json ToJson(const FileReport& report)
{
    nlohmann::ordered_json json;
    json["file"] = ToUtf8(report.input.Get());
    json["status"] = report.failure.empty() ? "ok" : "failed";
    if (!report.failure.empty()) {
        json["reason"] = ToUtf8(report.failure);
        return json;
    }
    json["output"] = TextOrNull(report.output.Get());
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
    if (report.automatic) {
        json["automatic"] = {{"candidates", report.automatic->candidates},
                             {"speechLevel", report.automatic->speechLevel},
                             {"threshold", report.automatic->threshold},
                             {"beat", nullptr}};
        if (report.automatic->beat) {
            json["automatic"]["beat"] = report.automatic->beat->seconds;
        }
    }
    json["nonFiniteSamples"] = report.nonFiniteSamples;
    json["seconds"] = report.seconds;
    json["timesRealTime"] = report.GetSpeed();
    return json;
}

std::string FindingsOfEffect(const EventSummary& events)
{
    std::string text =
        Counted(events.prominent, "prominent plosive") + ", " + Counted(events.repairs, "repair");
    if (events.strongest) {
        text += fmt::format("; strongest at {} ({:+.1f} dB of the average, taken down {:.1f} dB)",
                            FormatClock(events.strongest->time),
                            events.strongest->removed,
                            -events.strongest->reduction);
    }
    return text;
}

std::string AutomaticFindings(const EventSummary& events, const AutoSummary& summary)
{
    std::string text = Counted(events.repairs, "pop");
    if (summary.isTooShort) {
        text += " (shorter than a second: nothing to measure pops by)";
    }
    if (summary.strongest) {
        text += fmt::format(
            "; strongest at {} ({:.1f} dB over the speech's low end, taken down {:.1f} dB)",
            FormatClock(summary.strongest->peak),
            summary.strongest->before,
            summary.strongest->before - summary.strongest->after);
    }
    return text;
}

} // namespace

std::string DescribeMusic(const AutoSummary& summary)
{
    if (!summary.beat) {
        return "";
    }
    return fmt::format("sounds like music: {} of {} pops come whole beats of {:.2f} s behind the "
                       "one before; a bass drum is taken for pops",
                       summary.beat->onBeat,
                       summary.beat->compared,
                       summary.beat->seconds);
}

std::string SummaryLine(const FileReport& report)
{
    std::string line = Printable(report.input.InputLabel()) + ": ";
    line += report.automatic ? AutomaticFindings(report.events, *report.automatic)
                             : FindingsOfEffect(report.events);
    if (!report.preset.empty()) {
        line += "; preset " + Printable(report.preset);
    }
    line += fmt::format("; {:.0f}x real time", report.GetSpeed());
    if (!report.output.IsEmpty() && !report.output.IsStream()) {
        line += " -> " + Printable(report.output.Get());
    }
    return line;
}

std::string SummaryJson(const Session& session, const std::vector<FileReport>& reports)
{
    nlohmann::ordered_json json = ToJson(session);
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
