// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/FileName.h"

#include <string>

namespace Cli {

/// The bytes of a saved session. Throws FileError, whose text doesn't name the file.
std::string ReadStateFile(const FileName& name);

} // namespace Cli
