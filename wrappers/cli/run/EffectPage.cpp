// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/EffectPage.h"

#include "wrappers/cli/run/RecordingPage.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace Cli {

namespace {

std::string EventsNote(const EventSummary& events, size_t rows)
{
    std::string note =
        rows < events.prominent
            ? fmt::format("The {} strongest of {} prominent plosives have a row and clips",
                          rows,
                          events.prominent)
            : "Each prominent plosive has a row";
    note += ": prominent is what took out at least half of what the recording holds between 20 and "
            "150 Hz, on average, in as much time.";
    const uint64_t others = events.repairs - events.prominent;
    if (others > 0) {
        note += fmt::format(" {} smaller repair{} only in the list that --events writes.",
                            others,
                            others == 1 ? " stands" : "s stand");
    }
    return note;
}

} // namespace

ClipRequest MakeClipRequest(uint64_t number, const Wrapper::Detection& detection, int sampleRate)
{
    const double rate = sampleRate;
    const double removed = detection.energyBefore - detection.energyAfter;
    return {number,
            static_cast<double>(detection.start) / rate,
            static_cast<double>(detection.end) / rate,
            removed / std::max(1.0, static_cast<double>(detection.frames))};
}

PageEvent MakePageEvent(uint64_t number,
                        const Wrapper::Detection& detection,
                        const BandAverage& average,
                        int sampleRate)
{
    const Event event = MakeEvent(detection, average, sampleRate);
    const double usual = average.energyPerHop * static_cast<double>(detection.frames);
    PageEvent row;
    row.number = number;
    row.time = event.time;
    row.start = std::max(event.start, 0.0);
    row.end = std::max(event.end, 0.0);
    row.levelBefore = EnergyDecibel(usual > 0 ? detection.energyBefore / usual : 0.0);
    row.levelAfter = EnergyDecibel(usual > 0 ? detection.energyAfter / usual : 0.0);
    row.details = {fmt::format("{:.2f}", event.severity),
                   event.pitch ? fmt::format("{:.0f} Hz", *event.pitch) : "unvoiced"};
    return row;
}

PageHead MakePageHead(const FileReport& report, const Controls& controls, size_t rows)
{
    PageHead head = NamePage(report, ControlCaption(controls));
    head.facts = {{"prominent plosives", fmt::format("{}", report.events.prominent)},
                  {"repairs in all", fmt::format("{}", report.events.repairs)}};
    if (report.events.strongest) {
        head.facts.push_back({fmt::format("of the average taken out at {}",
                                          FormatClock(report.events.strongest->time)),
                              fmt::format("{:+.1f} dB", report.events.strongest->removed)});
    }
    head.facts.push_back(
        {"of the time changed", fmt::format("{:.1f} %", 100 * report.changedShare)});
    head.eventsNote = EventsNote(report.events, rows);
    head.levelNote = "the recording's average between 20 and 150 Hz";
    head.limitHz = controls.GetRepairLimit();
    head.details = {{"Severity", "how far it stood out, 0 to 1"}, {"Pitch", "of the voice there"}};
    return head;
}

} // namespace Cli
