// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/effect/Module.h"
#include "wrappers/cli/run/Options.h"

#include <memory>
#include <string>

namespace Cli {

/// Does what has nothing to do with recordings: lists presets or an undo history, imports or
/// removes a preset, changes the presets' folder. Returns what is to be printed on standard output.
/// Asks on standard error and reads the answer from standard input before it removes something,
/// unless the user allows it by --force.
///
/// Throws FileError for what can't be done, ModuleError.
std::string RunChore(const Options& options, const std::shared_ptr<const Wrapper::Module>& module);

} // namespace Cli
