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

// All members but "events", still open behind the last one.
std::string ObjectHead(const FileReport& report, const Controls& controls)
{
    nlohmann::ordered_json json;
    json["file"] = ToUtf8(report.input.Get());
    json["sampleRate"] = report.sampleRate;
    json["channels"] = report.channels;
    json["frames"] = report.frames;
    json["latency"] = report.latency;
    nlohmann::ordered_json& parameters = json["parameters"];
    for (size_t i = 0; i < ControlTable.size(); ++i) {
        parameters[ControlTable[i].member] = controls.values[i];
    }
    parameters["bypass"] = controls.bypass;
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

void EventsDocument::Add(size_t number,
                         const FileReport& report,
                         const Controls& controls,
                         const EventSpool& spool,
                         const BandAverage& average)
{
    const std::scoped_lock lock(mutex);
    const int64_t offset = collectedLength;
    std::string text = ObjectHead(report, controls) + ",\n  \"events\": [";
    const char* separator = "\n    ";
    spool.ForEach([&](const Wrapper::Detection& detection) {
        text += separator + EventJson(MakeEvent(detection, average, report.sampleRate));
        separator = ",\n    ";
        if (text.size() > Enough) {
            Collect(text);
            text.clear();
        }
    });
    Collect(text + (spool.GetCount() > 0 ? "\n  ]\n}" : "]\n}"));
    places[number] = {offset, collectedLength - offset};
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
