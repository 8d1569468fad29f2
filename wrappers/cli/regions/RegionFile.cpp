// SPDX-License-Identifier: ISC
#include "wrappers/cli/regions/RegionFile.h"

#include "wrappers/cli/autorepair/LabelTrack.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace Cli {

namespace {

using Json = nlohmann::json;

constexpr double OneMoment = 0.02; // s to each side of it

WantedRegion MakeRegion(double start, double end, std::string name)
{
    WantedRegion region;
    region.name = std::move(name);
    if (start < 0) {
        throw FileError(region.name + ": begins before the recording");
    }
    region.start.value = start;
    region.end.value = end;
    return region;
}

std::vector<WantedRegion> FromLabels(std::string_view text)
{
    std::vector<WantedRegion> regions;
    for (const LabelEntry& entry : ParseLabelEntries(text)) {
        WantedRegion region =
            MakeRegion(entry.span.start, entry.span.end, fmt::format("line {}", entry.line));
        if (entry.band) {
            // An edge that wasn't drawn is negative.
            region.lowHz = std::max(entry.band->low, 0.0);
            region.highHz = std::max(entry.band->high, 0.0);
        }
        CheckRegion(region);
        regions.push_back(std::move(region));
    }
    return regions;
}

// Of a list of several recordings, this one's.
Json TakeRecording(Json document, const FileName& recording)
{
    if (document.is_object()) {
        return document;
    }
    const auto found = std::find_if(document.begin(), document.end(), [&](const Json& entry) {
        return entry.at("file") == ToUtf8(recording.Get());
    });
    if (found == document.end()) {
        throw FileError("holds no events of this recording");
    }
    return std::move(*found);
}

// Events say which moments were analysed: the first and the last may lie beside the recording, and
// may be one.
WantedRegion FromEvent(const Json& event, int number)
{
    const double start = event.at("start").get<double>();
    const double end = event.at("end").get<double>();
    const double room = end > start ? 0 : OneMoment;
    WantedRegion region =
        MakeRegion(std::max(start - room, 0.0), end + room, fmt::format("event {}", number));
    region.mayHangOver = true;
    return region;
}

std::vector<WantedRegion> FromEvents(std::string_view text, const FileName& recording)
{
    std::vector<WantedRegion> regions;
    try {
        const Json found = TakeRecording(Json::parse(text), recording);
        int number = 0;
        for (const Json& event : found.at("events")) {
            regions.push_back(FromEvent(event, ++number));
        }
    } catch (const Json::exception&) {
        throw FileError("is no list of events that --events has written");
    }
    return regions;
}

} // namespace

std::vector<WantedRegion> ParseRegionFile(std::string_view text, const FileName& recording)
{
    const size_t begin = text.find_first_not_of(" \t\r\n");
    const bool isJson =
        begin != std::string_view::npos && (text[begin] == '{' || text[begin] == '[');
    return isJson ? FromEvents(text, recording) : FromLabels(text);
}

std::vector<WantedRegion> ReadRegionFile(const FileName& name, const FileName& recording)
{
    return ParseRegionFile(ReadLabelText(name), recording);
}

} // namespace Cli
