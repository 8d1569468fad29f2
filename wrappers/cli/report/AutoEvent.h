// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/report/Events.h"

#include <optional>

namespace Cli {

/// One repair that --auto or --repair-labels makes, on the time line of the recording. Seconds
/// count from the recording's first sample.
struct AutoEvent {
    double start = 0;            ///< seconds, the span of the burst
    double end = 0;              ///< seconds, above `start`
    double peak = 0;             ///< seconds, the loudest moment of what is taken out
    std::optional<double> score; ///< mean over the burst, above 0 for a pop; nothing for a label
    std::optional<double> keep;  ///< what decides whether it's repaired; nothing for a label
    double removed = 0; ///< dB, loudest 10 ms of what is taken out, against the speech level
    double before = 0;  ///< dB, the low end's greatest level in the span, above that of the speech
    double after = 0;   ///< dB, the same when repaired
    double upperFrequency = 0; ///< Hz, nothing is changed above it
};

/// The same as lists, label tracks and pictures of repairs have it.
inline Event ToEvent(const AutoEvent& automatic)
{
    Event event;
    event.time = automatic.peak;
    event.start = automatic.start;
    event.end = automatic.end;
    event.reduction = automatic.after - automatic.before;
    event.removed = automatic.removed;
    event.isProminent = true;
    return event;
}

} // namespace Cli
