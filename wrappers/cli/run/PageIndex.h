// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/OutputFile.h"
#include "wrappers/cli/run/FileReport.h"

#include <vector>

namespace Cli {

/// The page that leads to the pages of all recordings of a run.
class PageIndex {
public:
    /// Its folder must be there. Throws FileError.
    PageIndex(const FileName& newName, Overwrite overwrite);

    /// Writes the file; those that failed have their reason in it. Throws FileError.
    void Write(const std::vector<FileReport>& reports);

private:
    FileName name;
    OutputFile output;
};

} // namespace Cli
