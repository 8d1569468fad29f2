// SPDX-License-Identifier: ISC
#include "wrappers/cli/page/ReportPage.h"

#include "frameworks/qobase/util/Base64.h"
#include "wrappers/cli/page/Template.h"
#include "wrappers/cli/plot/Levels.h"
#include "wrappers/cli/plot/PlotDrawing.h"
#include "wrappers/cli/text/Version.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <string_view>

namespace Cli {

namespace {

using Json = nlohmann::ordered_json;

// In Base64 they take 18 of the 20 MB; the pictures take 1.2 at the most.
constexpr size_t GreatestClipBytes = 13'500'000;
constexpr int ColourCount = 256;

std::string Base64(const void* data, size_t size)
{
    return Util::EncodeBase64({static_cast<const uint8_t*>(data), size}).ToStdString();
}

template <typename Number>
std::string Base64(const std::vector<Number>& numbers)
{
    return Base64(numbers.data(), numbers.size() * sizeof(Number));
}

Json FactsJson(const std::vector<PageFact>& facts)
{
    Json json = Json::array();
    for (const PageFact& fact : facts) {
        json.push_back({{"label", fact.label}, {"value", fact.value}});
    }
    return json;
}

Json SpectrogramJson(const Spectrogram& spectrogram, const LevelRange& range)
{
    const std::string png = LevelsAsPng(spectrogram, range);
    return {{"start", spectrogram.GetStartSeconds()},
            {"column", spectrogram.GetColumnSeconds()},
            {"bin", spectrogram.GetBinHz()},
            {"png", "data:image/png;base64," + Base64(png.data(), png.size())}};
}

// Each entry as four steps of 1/127 of the greatest: least and greatest before, least and greatest
// after.
Json WaveJson(const PlotRecorder& picture)
{
    constexpr float Steps = 127;
    float greatest = 1e-4F; // silence gets a scale too
    for (const WaveColumn& column : picture.GetWave()) {
        greatest = std::max({greatest,
                             -column.leastBefore,
                             column.greatestBefore,
                             -column.leastAfter,
                             column.greatestAfter});
    }
    std::vector<int8_t> data;
    for (const WaveColumn& column : picture.GetWave()) {
        for (const float value :
             {column.leastBefore, column.greatestBefore, column.leastAfter, column.greatestAfter}) {
            data.push_back(static_cast<int8_t>(std::lround(value / greatest * Steps)));
        }
    }
    return {{"column", picture.GetWaveSeconds()}, {"scale", greatest}, {"data", Base64(data)}};
}

// The map that the plot has, black first, three bytes a colour.
std::string Colours()
{
    std::vector<uint8_t> colours;
    for (int i = 0; i < ColourCount; ++i) {
        const uint32_t pixel = MapPixel(static_cast<double>(i) / (ColourCount - 1));
        for (const uint32_t shift : {16U, 8U, 0U}) {
            colours.push_back(static_cast<uint8_t>(pixel >> shift & 0xFFU));
        }
    }
    return Base64(colours);
}

Json PictureJson(const PlotRecorder& picture)
{
    const LevelRange range = FindLevelRange(picture);
    return {{"top", range.top},
            {"floor", range.floor},
            {"limit", SpectrogramLimitHz},
            {"colours", Colours()},
            {"before", SpectrogramJson(picture.GetBefore(), range)},
            {"after", SpectrogramJson(picture.GetAfter(), range)},
            {"wave", WaveJson(picture)}};
}

Json EventJson(const PageEvent& event)
{
    return {{"time", event.time},
            {"start", event.start},
            {"end", event.end},
            {"before", event.levelBefore},
            {"after", event.levelAfter},
            {"details", event.details}};
}

std::string
PageJson(const PageHead& head, const std::vector<PageEvent>& events, const PlotRecorder& picture)
{
    Json json;
    json["version"] = GetVersion();
    json["title"] = head.title;
    json["subtitle"] = head.subtitle;
    json["duration"] = picture.GetDuration();
    json["limit"] = head.limitHz;
    json["facts"] = FactsJson(head.facts);
    json["eventsNote"] = head.eventsNote;
    json["levelNote"] = head.levelNote;
    json["details"] = FactsJson(head.details);
    json["picture"] = PictureJson(picture);
    json["events"] = Json::array();
    for (const PageEvent& event : events) {
        json["events"].push_back(EventJson(event));
    }
    return EscapeScript(json.dump());
}

// A script element for each clip, so that the page decodes only what is looked at or played.
void WriteClips(const std::vector<PageEvent>& events,
                const ClipRecorder& clips,
                const TextSink& sink)
{
    std::vector<uint64_t> numbers;
    numbers.reserve(events.size());
    for (const PageEvent& event : events) {
        numbers.push_back(event.number);
    }
    const ClipQuality quality = clips.ChooseQuality(numbers, GreatestClipBytes);
    for (size_t i = 0; i < events.size(); ++i) {
        const auto clip = clips.Read(events[i].number, quality);
        if (clip) {
            const Slots slots = {{"number", [&](const TextSink& out) { out(std::to_string(i)); }},
                                 {"clip", [&](const TextSink& out) {
                                      out(Json({{"start", clip->start},
                                                {"rate", clip->sampleRate},
                                                {"channels", clip->channels},
                                                {"before", Base64(clip->before)},
                                                {"after", Base64(clip->after)}})
                                              .dump());
                                  }}};
            FillTemplate("clip.html", slots, sink);
        }
    }
}

} // namespace

void WriteReportPage(int descriptor,
                     const PageHead& head,
                     const std::vector<PageEvent>& events,
                     const PlotRecorder& picture,
                     const ClipRecorder& clips)
{
    const Slots slots = {
        {"title", [&](const TextSink& sink) { sink(EscapeHtml(head.title)); }},
        {"data", [&](const TextSink& sink) { sink(PageJson(head, events, picture)); }},
        {"clips", [&](const TextSink& sink) { WriteClips(events, clips, sink); }}};
    WriteTemplate("page.html", slots, descriptor);
}

} // namespace Cli
