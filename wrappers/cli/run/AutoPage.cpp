// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/AutoPage.h"

#include "wrappers/cli/run/RecordingPage.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

namespace Cli {

namespace {

// A label has no score.
std::string ScoreText(const std::optional<double>& score)
{
    return score ? fmt::format("{:.2f}", *score) : "none";
}

} // namespace

ClipRequest MakeClipRequest(uint64_t number, const AutoEvent& event)
{
    return {number, event.start, event.end, event.removed};
}

PageEvent MakePageEvent(uint64_t number, const AutoEvent& event)
{
    PageEvent row;
    row.number = number;
    row.time = event.peak;
    row.start = event.start;
    row.end = event.end;
    row.levelBefore = event.before;
    row.levelAfter = event.after;
    row.details = {
        ScoreText(event.score), ScoreText(event.keep), fmt::format("{:.1f} dB", event.removed)};
    return row;
}

PageHead
MakePageHead(const FileReport& report, const std::string& words, const std::vector<PageEvent>& rows)
{
    const uint64_t pops = report.events.repairs;
    PageHead head = NamePage(report, words);
    head.facts = {{pops == 1 ? "pop repaired" : "pops repaired", fmt::format("{}", pops)}};
    if (report.automatic && report.automatic->strongest) {
        const AutoEvent& strongest = *report.automatic->strongest;
        head.facts.push_back({fmt::format("at its strongest, at {}", FormatClock(strongest.peak)),
                              fmt::format("{:+.1f} dB", strongest.before)});
        head.limitHz = strongest.upperFrequency;
    }
    head.facts.push_back(
        {"of the time changed", fmt::format("{:.1f} %", 100 * report.changedShare)});
    head.eventsNote =
        rows.size() < pops
            ? fmt::format("The {} strongest of {} pops have a row and clips.", rows.size(), pops)
            : "Each pop has a row.";
    head.eventsNote += " Every sample that none of them reaches is the recording's own.";
    if (report.automatic && report.automatic->beat) {
        head.eventsNote += " This recording " + DescribeMusic(*report.automatic) + ".";
    }
    head.levelNote = "the usual one of the speech";
    head.details = {{"Score", "how clearly it is a pop, above 0"},
                    {"Keep", "decides whether it is repaired"},
                    {"Removed", "the loudest 10 ms taken out, against the speech level"}};
    return head;
}

} // namespace Cli
