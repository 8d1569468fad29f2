// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/EventsDocument.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"

#include <nlohmann/json.hpp>

namespace Cli {

namespace {

// A piece of text that is worth a system call.
constexpr size_t Enough = size_t{64} * 1024;

void WriteText(int descriptor, std::string_view text)
{
    const int failure = WriteFully(descriptor, text);
    if (failure != 0) {
        throw FileError::FromErrno(failure);
    }
}

nlohmann::ordered_json DescribeRecording(const FileReport& report)
{
    nlohmann::ordered_json json;
    json["file"] = ToUtf8(report.input.Get());
    json["sampleRate"] = report.sampleRate;
    json["channels"] = report.channels;
    json["frames"] = report.frames;
    return json;
}

// All members but "events", still open behind the last one.
std::string ObjectHead(const nlohmann::ordered_json& json)
{
    std::string text = json.dump(2);
    text.resize(text.rfind('\n'));
    return text;
}

} // namespace

std::string EventJson(const Event& event)
{
    nlohmann::ordered_json json;
    json["time"] = event.time;
    json["start"] = event.start;
    json["end"] = event.end;
    json["severity"] = event.severity;
    json["voiced"] = event.pitch.has_value();
    json["pitch"] = event.pitch ? nlohmann::ordered_json(*event.pitch) : nlohmann::ordered_json();
    json["reduction"] = event.reduction;
    json["removed"] = event.removed;
    json["prominent"] = event.isProminent;
    return json.dump();
}

std::string EventJson(const AutoEvent& event)
{
    const auto orNull = [](const std::optional<double>& value) {
        return value ? nlohmann::ordered_json(*value) : nlohmann::ordered_json();
    };
    nlohmann::ordered_json json;
    json["start"] = event.start;
    json["end"] = event.end;
    json["peak"] = event.peak;
    json["score"] = orNull(event.score);
    json["removed"] = event.removed;
    json["keep"] = orNull(event.keep);
    json["before"] = event.before;
    json["after"] = event.after;
    json["upperFrequency"] = event.upperFrequency;
    return json.dump();
}

EventsDocument::EventsDocument(const FileName& name, Overwrite overwrite, Form newForm)
    : output(name, overwrite)
    , form(newForm)
    , collected(OpenAnonymousFile())
{
}

void EventsDocument::Collect(std::string_view text)
{
    WriteText(collected.Get(), text);
    collectedLength += static_cast<int64_t>(text.size());
}

void EventsDocument::AddObject(size_t number,
                               const std::string& head,
                               const std::function<void(const EventVisitor&)>& visitEvents)
{
    const std::scoped_lock lock(mutex);
    const int64_t offset = collectedLength;
    std::string text = head + ",\n  \"events\": [";
    const char* separator = "\n    ";
    bool hasEvents = false;
    visitEvents([&](const std::string& json) {
        text += separator + json;
        separator = ",\n    ";
        hasEvents = true;
        if (text.size() > Enough) {
            Collect(text);
            text.clear();
        }
    });
    Collect(text + (hasEvents ? "\n  ]\n}" : "]\n}"));
    places[number] = {offset, collectedLength - offset};
}

void EventsDocument::Add(size_t number,
                         const FileReport& report,
                         const Controls& controls,
                         const EventSpool& spool,
                         const BandAverage& average)
{
    nlohmann::ordered_json json = DescribeRecording(report);
    json["latency"] = report.latency;
    nlohmann::ordered_json& parameters = json["parameters"];
    for (size_t i = 0; i < ControlTable.size(); ++i) {
        parameters[ControlTable[i].member] = controls.values[i];
    }
    parameters["bypass"] = controls.bypass;
    nlohmann::ordered_json& changed = json["changed"] = nlohmann::ordered_json::object();
    for (const auto& [identifier, value] : report.changed) {
        changed[ToUtf8(identifier)] = ToUtf8(value);
    }
    AddObject(number, ObjectHead(json), [&](const EventVisitor& visit) {
        spool.ForEach([&](const Wrapper::Detection& detection) {
            visit(EventJson(MakeEvent(detection, average, report.sampleRate)));
        });
    });
}

void EventsDocument::Add(size_t number, const FileReport& report, std::span<const AutoEvent> events)
{
    nlohmann::ordered_json json = DescribeRecording(report);
    json["speechLevel"] = report.automatic->speechLevel;
    json["threshold"] = report.automatic->threshold;
    json["candidates"] = report.automatic->candidates;
    json["beat"] = nullptr;
    if (report.automatic->beat) {
        json["beat"] = report.automatic->beat->seconds;
    }
    AddObject(number, ObjectHead(json), [&](const EventVisitor& visit) {
        for (const AutoEvent& event : events) {
            visit(EventJson(event));
        }
    });
}

void EventsDocument::Finish()
{
    if (form == Form::Object && places.empty()) {
        return;
    }
    const int target = output.GetDescriptor();
    if (form == Form::Array) {
        WriteText(target, "[");
    }
    const char* separator = form == Form::Array ? "\n" : "";
    for (const auto& [number, place] : places) {
        WriteText(target, separator);
        CopyBytes(collected.Get(), place.offset, place.length, target);
        separator = ",\n";
    }
    WriteText(target, form == Form::Array ? "\n]\n" : "\n");
    output.Commit();
}

} // namespace Cli
