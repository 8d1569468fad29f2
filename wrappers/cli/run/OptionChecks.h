// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/run/Options.h"

namespace Cli {

/// Refuses options that contradict each other and works out `isSingle`. Throws UsageError.
void CheckOptions(Options& options);

/// Refuses to write audio to a terminal. Throws UsageError.
void CheckStandardOutput(const Options& options, bool isTerminal);

/// True when some result goes to standard output.
bool WritesAudioToStandardOutput(const Options& options);

/// True when standard output carries audio, a report or a session, and so no lines for a reader.
bool TakesStandardOutput(const Options& options);

} // namespace Cli
