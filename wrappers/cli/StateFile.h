// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <string>

namespace Cli {

/// Most bytes that a saved session may have.
inline constexpr size_t greatestState = size_t{64} * 1024 * 1024;

/// The bytes of a saved session; "-" reads standard input. Throws FileError, whose text doesn't
/// name the file.
std::string ReadStateFile(const std::string& path);

} // namespace Cli
