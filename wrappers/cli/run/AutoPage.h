// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/page/ReportPage.h"
#include "wrappers/cli/report/AutoEvent.h"
#include "wrappers/cli/run/FileReport.h"

#include <string>
#include <vector>

namespace Cli {

/// Asks for the clip of repair `number`; what takes away more is stronger.
ClipRequest MakeClipRequest(uint64_t number, const AutoEvent& event);

/// The row of a repair.
PageEvent MakePageEvent(uint64_t number, const AutoEvent& event);

/// What the page with these `rows` says of a recording that was repaired without controls; `words`
/// say how.
PageHead MakePageHead(const FileReport& report,
                      const std::string& words,
                      const std::vector<PageEvent>& rows);

} // namespace Cli
