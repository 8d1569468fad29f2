// SPDX-License-Identifier: ISC
#pragma once

#include <string_view>

namespace Cli::Web {

/// Content of a file of `web` that the build has put into the program, by its name; empty for a
/// file that isn't there.
std::string_view FindResource(std::string_view path);

} // namespace Cli::Web
