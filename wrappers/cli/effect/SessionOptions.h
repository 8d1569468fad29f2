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
    std::string importPreset; ///< a file; empty: none; so are the next three
    std::string removePreset; ///< a name
    std::string presetFolder; ///< a folder, or "default"
    std::string history;      ///< a file

    /// True when the command has something to do that has nothing to do with recordings, which is
    /// then all that it does.
    bool IsChore() const
    {
        return listsPresets || !importPreset.empty() || !removePreset.empty() ||
               !presetFolder.empty() || !history.empty();
    }

    /// True when there is something to do without any recording.
    bool IsTaskInItself() const
    {
        return IsChore() || printsParams || !savePreset.IsEmpty() || !stateOut.IsEmpty();
    }

    /// True when the settings come from somewhere else than the command line alone, or go
    /// somewhere else than into recordings.
    bool IsWanted() const { return IsTaskInItself() || !preset.empty() || !stateIn.IsEmpty(); }
};

} // namespace Cli
