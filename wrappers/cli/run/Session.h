// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/effect/Controls.h"
#include "wrappers/cli/effect/Module.h"
#include "wrappers/cli/effect/Parameters.h"
#include "wrappers/cli/run/Options.h"
#include "wrappers/common/Preset.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Cli {

/// What all instances of a run are set to, and what became of the options about it.
struct Session {
    Settings settings;
    std::optional<Wrapper::Preset> preset;  ///< the one that was applied
    std::vector<ParameterValue> parameters; ///< filled when they are to be printed
    std::string savedPreset;                ///< the file; empty: none
    FileName savedState;
};

/// Works the settings out on an instance of its own, before any recording is touched: first the
/// saved session, then the preset, then the controls of the command line. Presets and sessions are
/// read here and nowhere else, so that all recordings of a run get the same. Writes the preset and
/// the session that the options ask for.
///
/// Throws UsageError for a preset or a session that can't be used, FileError when one can't be
/// written, ModuleError.
Session MakeSession(const Options& options, const std::shared_ptr<const Wrapper::Module>& module);

} // namespace Cli
