// SPDX-License-Identifier: ISC
#pragma once

#include <string>

namespace Wrapper {

/// Where a preset comes from: made on the spot, with the product, from the user's folder.
enum class PresetGroup { BuiltIn, Factory, User };

/// An entry of the list of presets, or a preset that has been applied or saved.
struct Preset {
    std::string name;
    std::string comment; ///< ends with "..." where it's too long to be shown whole
    PresetGroup group = PresetGroup::BuiltIn;
    std::string path;    ///< empty for one that is no file
    std::string problem; ///< empty, or why it can't be used or wasn't saved
    bool isReadOnly = false;
};

} // namespace Wrapper
