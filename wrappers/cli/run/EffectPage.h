// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/effect/Controls.h"
#include "wrappers/cli/page/ReportPage.h"
#include "wrappers/cli/report/Events.h"
#include "wrappers/cli/run/FileReport.h"

namespace Cli {

/// Asks for the clip of repair `number`. Louder ones are stronger, whatever the average will be.
ClipRequest MakeClipRequest(uint64_t number, const Wrapper::Detection& detection, int sampleRate);

/// The row of a repair.
PageEvent MakePageEvent(uint64_t number,
                        const Wrapper::Detection& detection,
                        const BandAverage& average,
                        int sampleRate);

/// What the page says of a recording that the effect repaired; `rows` of its plosives have a row.
PageHead MakePageHead(const FileReport& report, const Controls& controls, size_t rows);

} // namespace Cli
