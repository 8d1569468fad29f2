// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Preset.h"

#include <string>
#include <vector>

namespace Cli {

/// The presets for a reader, one a line: name, where from, comment.
std::string PresetTable(const std::vector<Wrapper::Preset>& presets);

/// The presets as a JSON document.
std::string PresetJson(const std::vector<Wrapper::Preset>& presets);

} // namespace Cli
