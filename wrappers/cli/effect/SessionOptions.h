// SPDX-License-Identifier: ISC
#pragma once

#include <string>

namespace Cli {

/// What the user wants of presets, saved sessions and the list of parameters.
struct SessionOptions {
    std::string preset;     ///< a preset's name or a file; empty: none; so are the next four
    std::string savePreset; ///< a name or a file
    std::string comment;    ///< goes into the saved preset
    std::string stateIn;
    std::string stateOut;
    bool listsPresets = false;
    bool printsParams = false;

    /// True when there is something to do without any recording.
    bool IsTaskInItself() const
    {
        return listsPresets || printsParams || !savePreset.empty() || !stateOut.empty();
    }

    /// True when the settings come from somewhere else than the command line alone, or go
    /// somewhere else than into recordings.
    bool IsWanted() const { return IsTaskInItself() || !preset.empty() || !stateIn.empty(); }
};

} // namespace Cli
