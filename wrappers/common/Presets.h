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
    /// Writes what the instance is set to, under a name or into a file; `path` is where. Without a
    /// comment a preset that is replaced hands on its own.
    std::optional<Preset>
    Save(const std::string& name, const std::string& comment, Replace replace);
    /// Copies a preset's file into the user's folder, as `name` in `path`.
    std::optional<Preset> Import(const std::string& file);
    /// What to ask the user before Remove(), or why there is nothing to be removed.
    struct Question {
        std::string text;
        std::string problem; ///< empty when there is something
    };
    std::optional<Question> AskToRemove(const std::string& name);
    /// Removes one of the user's presets for good; `path` is where it was.
    std::optional<Preset> Remove(const std::string& name);
    /// Makes it the folder of the user's presets, by their settings; empty for the usual one.
    /// `path` is the folder.
    std::optional<Preset> SetFolder(const std::string& folder);

private:
    Instance& instance;
};

} // namespace Wrapper
