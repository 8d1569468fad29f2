// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"

#include <string>
#include <vector>

namespace Cli {

/// A preset that an instance knows, or has applied.
struct Preset {
    std::string name;
    std::string path; ///< empty for one that is no file
    std::string comment;
    std::string problem; ///< not empty: why it can't be used
    PluginCorePresetGroup group = PresetGroupBuiltIn;
    bool isReadOnly = false;
};

/// The presets for a reader, one a line: name, where from, comment.
std::string PresetTable(const std::vector<Preset>& presets);

/// The presets as a JSON document.
std::string PresetJson(const std::vector<Preset>& presets);

} // namespace Cli
