// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/FileName.h"
#include "wrappers/cli/regions/WantedRegion.h"

#include <string_view>
#include <vector>

namespace Cli {

/// Reads regions from a label track, as Audacity and --labels write it, or from a list of events
/// that --events has written. A list of several recordings has those of `recording` in it. Throws
/// FileError, with the number of the line for what a label track has wrong.
std::vector<WantedRegion> ParseRegionFile(std::string_view text, const FileName& recording);

/// The regions of a file. Throws FileError.
std::vector<WantedRegion> ReadRegionFile(const FileName& name, const FileName& recording);

} // namespace Cli
