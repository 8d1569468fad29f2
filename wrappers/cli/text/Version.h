// SPDX-License-Identifier: ISC
#pragma once

namespace Cli {

/// The project's version, such as "6.0.0".
const char* GetVersion();

} // namespace Cli
