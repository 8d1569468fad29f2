// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/page/ClipRecorder.h"
#include "wrappers/cli/plot/PlotRecorder.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Cli {

/// One repair as its row shows it.
struct PageEvent {
    uint64_t number = 0; ///< that of its clip
    double time = 0;     ///< seconds; so are the next two
    double start = 0;
    double end = 0;
    double levelBefore = 0; ///< dB, of the low end, against what PageHead::levelNote says
    double levelAfter = 0;
    std::vector<std::string> details; ///< one for each of PageHead::details
};

/// A word with its value, or what a value of each row is called.
struct PageFact {
    std::string label;
    std::string value; ///< for a row's: what it means
};

/// All that a page says of the recording as a whole; UTF-8.
struct PageHead {
    std::string title;
    std::string subtitle;
    std::vector<PageFact> facts;
    std::string eventsNote; ///< which events have a row
    std::string levelNote;  ///< what levels are measured against, such as "the recording's average"
    double limitHz = 0;     ///< repairs reach up to here; 0: none
    std::vector<PageFact> details;
};

/// Writes the page of a recording, which needs nothing beside itself. It has a row for each of
/// `events`, which are in order of time and at most ClipRecorder::GreatestCount, and takes 20 MB at
/// most. Throws FileError.
void WriteReportPage(int descriptor,
                     const PageHead& head,
                     const std::vector<PageEvent>& events,
                     const PlotRecorder& picture,
                     const ClipRecorder& clips);

} // namespace Cli
