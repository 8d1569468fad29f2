// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/run/FileReport.h"
#include "wrappers/cli/run/JobPlaces.h"
#include "wrappers/cli/run/RunContext.h"

#include <cstddef>

namespace Cli {

/// Takes one recording through an instance of its own and writes what was asked for. Several may
/// run on different threads. Leaves `place` when nothing is left but to flush what was written.
/// Failures stand in the report, none is thrown.
FileReport
RunFile(const RunContext& context, const Task& task, size_t number, JobPlaces::Place& place);

} // namespace Cli
