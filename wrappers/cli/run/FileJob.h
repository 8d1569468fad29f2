// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/effect/Module.h"
#include "wrappers/cli/report/Console.h"
#include "wrappers/cli/run/EventsDocument.h"
#include "wrappers/cli/run/FileReport.h"
#include "wrappers/cli/run/JobPlaces.h"
#include "wrappers/cli/run/Options.h"
#include "wrappers/cli/run/Session.h"
#include "wrappers/cli/run/Tasks.h"

#include <cstddef>
#include <memory>

namespace Cli {

/// What all files of a run share.
struct RunContext {
    const Options& options;
    const std::shared_ptr<const Wrapper::Module>& module; ///< null when it has no part in it
    const Session& session;
    Console& console;
    EventsDocument* events; ///< null when not wanted
};

/// Takes one recording through an instance of its own and writes what was asked for. Several may
/// run on different threads. Leaves `place` when nothing is left but to flush what was written.
/// Failures stand in the report, none is thrown.
FileReport
RunFile(const RunContext& context, const Task& task, size_t number, JobPlaces::Place& place);

} // namespace Cli
