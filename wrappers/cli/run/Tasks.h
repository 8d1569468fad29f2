// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/run/Options.h"

#include <string>
#include <string_view>
#include <vector>

namespace Cli {

/// One recording of a run with the names of all that is made of it.
struct Task {
    FileName input;
    FileName output; ///< empty in a dry run
    FileName labels; ///< empty: not wanted; so are the next two
    FileName plot;
    FileName page;
    FileName repairLabels; ///< read; so is the next
    FileName regionFile;
    std::string failure; ///< not empty: why it can't be begun
};

/// Finds the recordings that the options name and where their results go, in a stable order: as
/// named, folders by name. Files that are results of the program already ("NAME.puffguard.EXT") are
/// left out when a folder is searched.
std::vector<Task> MakeTasks(const Options& options);

/// "NAME.puffguard.EXT" beside `input`; `extension` (no dot) takes the place of its own, when not
/// empty.
FileName DefaultOutputName(const FileName& input, const std::string& extension);

/// Where a report goes: `pattern` with the file's name in place of "{name}"; inside `pattern` when
/// that is a folder, as NAME + `ending`; else `pattern` itself.
FileName
ReportName(const FileName& pattern, const FileName& input, std::string_view ending, bool isFolder);

/// Where the index of all recordings' pages goes; empty when there is none.
FileName IndexName(const Options& options);

} // namespace Cli
