// SPDX-License-Identifier: ISC
#pragma once

#include <string>

namespace Cli {

/// The bytes of a saved session; "-" reads standard input. Throws FileError, whose text doesn't
/// name the file.
std::string ReadStateFile(const std::string& path);

} // namespace Cli
