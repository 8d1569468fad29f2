// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/run/FileReport.h"
#include "wrappers/cli/run/JobPlaces.h"
#include "wrappers/cli/run/RunContext.h"

#include <cstddef>

namespace Cli {

/// Finds the pops of one recording, or takes them from a label track, repairs them and writes what
/// was asked for: RunFile() for --auto and --repair-labels. Throws FileError.
///
/// The recording is read three times: for its levels, for the repairs of its candidates, and, when
/// their number has said which of them count, for its samples. Levels and repairs wait in temporary
/// files, so that memory stays the same however long it is.
void RunAutoFile(const RunContext& context,
                 const Task& task,
                 size_t number,
                 JobPlaces::Place& place,
                 FileReport& report);

} // namespace Cli
