// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/Console.h"
#include "wrappers/cli/EventsDocument.h"
#include "wrappers/cli/FileReport.h"
#include "wrappers/cli/Module.h"
#include "wrappers/cli/Options.h"
#include "wrappers/cli/Session.h"
#include "wrappers/cli/Tasks.h"

#include <cstddef>
#include <memory>

namespace Cli {

/// What all files of a run share.
struct RunContext {
    const Options& options;
    const std::shared_ptr<const Wrapper::Module>& module;
    const Session& session;
    Console& console;
    EventsDocument* events; ///< null when not wanted
};

/// Takes one recording through an instance of its own and writes what was asked for. Several may
/// run on different threads. Failures are told in the report, none is thrown.
FileReport RunFile(const RunContext& context, const Task& task, size_t number);

} // namespace Cli
