// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/run/FileReport.h"
#include "wrappers/cli/run/JobPlaces.h"
#include "wrappers/cli/run/RunContext.h"

#include <cstddef>

namespace Cli {

/// Repairs regions of one recording by the effect and fills the report; everything else comes out
/// as it came in. Leaves `place` when nothing is left but to flush what was written. Throws
/// FileError and ModuleError.
void RunRegionFile(const RunContext& context,
                   const Task& task,
                   size_t number,
                   JobPlaces::Place& place,
                   FileReport& report);

} // namespace Cli
