// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/EffectEvents.h"

#include "wrappers/cli/run/EffectPage.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>

namespace Cli {

void EffectEvents::Add(std::span<const Wrapper::Detection> detections, int sampleRate)
{
    uint64_t place = spool.GetCount();
    for (const Wrapper::Detection& detection : detections) {
        results.Want(MakeClipRequest(place++, detection, sampleRate));
    }
    spool.Append(detections);
}

void EffectEvents::Write(FileReport& report, const Controls& controls)
{
    results.BeginEvents(report, ControlCaption(controls), controls.GetRepairLimit());
    EventSummary& summary = report.events;
    spool.ForEach([&](const Wrapper::Detection& detection) {
        Event event = MakeEvent(detection, average, report.sampleRate);
        ++summary.repairs;
        if (!summary.strongest || event.removed > summary.strongest->removed) {
            summary.strongest = event;
        }
        if (!event.isProminent) {
            return;
        }
        ++summary.prominent;
        event.end = std::min(event.end, report.GetDuration()); // its last moment may be behind it
        results.Mark(event);
        context.console.Detail(fmt::format("{}: plosive at {}, taken down {:.1f} dB",
                                           Printable(task.input.Get()),
                                           FormatClock(event.time),
                                           -event.reduction));
    });
    if (!task.page.IsEmpty()) {
        WritePage(report, controls);
    }
}

void EffectEvents::WritePage(FileReport& report, const Controls& controls)
{
    report.page = task.page;
    report.changedShare = results.GetChangedShare();
    std::vector<PageEvent> rows;
    uint64_t place = 0;
    spool.ForEach([&](const Wrapper::Detection& detection) {
        if (results.HasClip(place) &&
            MakeEvent(detection, average, report.sampleRate).isProminent) {
            rows.push_back(MakePageEvent(place, detection, average, report.sampleRate));
        }
        ++place;
    });
    results.WritePage(MakePageHead(report, controls, rows.size()), rows);
}

void EffectEvents::AddToList(size_t number,
                             const FileReport& report,
                             const Controls& controls) const
{
    if (context.events != nullptr) {
        context.events->Add(number, report, controls, spool, average);
    }
}

} // namespace Cli
