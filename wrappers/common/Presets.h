// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Preset.h"

#include <optional>
#include <string>
#include <vector>

namespace Wrapper {

class Instance;

/// The presets of an instance with their files and faults, for a wrapper that has a place to show
/// them; Instance itself applies one by its name.
///
/// A fault of a preset stands in `problem`, and then nothing has changed. Nothing comes back, after
/// a line in the log, when the module refuses the call itself. All calls are [ui].
class Presets {
public:
    enum class Replace { Refuse, Allow };

    /// `newInstance` lives longer.
    explicit Presets(Instance& newInstance)
        : instance(newInstance)
    {
    }

    /// Whether this stands for a file and not for the name of a preset, as the module decides it.
    static bool IsFile(const std::string& name);

    /// Looks at the folders anew.
    std::optional<std::vector<Preset>> List();
    /// Sets the instance by a preset's name or file.
    std::optional<Preset> Apply(const std::string& name);
    /// Writes what the instance is set to, under a name or into a file; `path` is where.
    std::optional<Preset>
    Save(const std::string& name, const std::string& comment, Replace replace);

private:
    Instance& instance;
};

} // namespace Wrapper
