// SPDX-License-Identifier: ISC
#include "wrappers/cli/report/Labels.h"

#include <fmt/format.h>

#include <algorithm>

namespace Cli {

std::string LabelLine(const Event& event)
{
    // A label can't begin before the recording, but the first analysed moments can.
    return fmt::format("{:.6f}\t{:.6f}\tplosive {:.1f} dB\n",
                       std::max(event.start, 0.0),
                       std::max(event.end, 0.0),
                       event.reduction);
}

} // namespace Cli
