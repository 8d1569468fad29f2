// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/run/Options.h"

namespace Cli {

/// Does all that the options ask for, several files side by side, and returns the exit code: 0 when
/// all went well, 1 when something failed.
int RunBatch(const Options& options);

} // namespace Cli
