// SPDX-License-Identifier: ISC
#pragma once

#include <string_view>

namespace LMPuffguard {

/// Content of a file that the build has put into the module, by its path below `resources`; empty
/// for a file that isn't there. [any]
std::string_view FindResource(std::string_view path);

} // namespace LMPuffguard
