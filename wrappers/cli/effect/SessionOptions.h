// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/FileName.h"

#include <string>

namespace Cli {

/// What the user wants of presets, saved sessions and the list of parameters.
struct SessionOptions {
    std::string preset;  ///< a preset's name or a file; empty: none; so are the next four
    FileName savePreset; ///< a name or a file
    std::string comment; ///< goes into the saved preset
    FileName stateIn;
    FileName stateOut;
    bool listsPresets = false;
    bool printsParams = false;

    /// True when there is something to do without any recording.
    bool IsTaskInItself() const
    {
        return listsPresets || printsParams || !savePreset.IsEmpty() || !stateOut.IsEmpty();
    }

    /// True when the settings come from somewhere else than the command line alone, or go
    /// somewhere else than into recordings.
    bool IsWanted() const { return IsTaskInItself() || !preset.empty() || !stateIn.IsEmpty(); }
};

} // namespace Cli
