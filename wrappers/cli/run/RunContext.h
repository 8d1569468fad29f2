// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/effect/Module.h"
#include "wrappers/cli/report/Console.h"
#include "wrappers/cli/run/EventsDocument.h"
#include "wrappers/cli/run/Options.h"
#include "wrappers/cli/run/Session.h"
#include "wrappers/cli/run/Tasks.h"

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

/// Reports that a recording which came as a stream lies in a temporary file.
void ReportSpooling(const RunContext& context, const Task& task);

} // namespace Cli
