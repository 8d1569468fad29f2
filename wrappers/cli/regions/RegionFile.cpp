// SPDX-License-Identifier: ISC
#include "wrappers/cli/regions/RegionFile.h"

#include "wrappers/cli/autorepair/LabelTrack.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace Cli {

namespace {

using Json = nlohmann::json;

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

const Json& FindRecording(const Json& document, const FileName& recording)
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
    return *found;
}

// A repair may begin before the recording, as analysed moments do, and be a moment long, where its
// frame is all of it.
std::vector<WantedRegion> FromEvents(std::string_view text, const FileName& recording)
{
    std::vector<WantedRegion> regions;
    try {
        const Json document = Json::parse(text);
        int number = 0;
        for (const Json& event : FindRecording(document, recording).at("events")) {
            const double start = std::max(event.at("start").get<double>(), 0.0);
            const double end = event.at("end").get<double>();
            ++number;
            if (end > start) {
                regions.push_back(MakeRegion(start, end, fmt::format("event {}", number)));
            }
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
