// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/run/Options.h"

#include <string>

namespace Cli {

/// What the choice of a result's format depends on besides the options.
struct FormatQuestion {
    FileName input;
    FileName output;
    int format = 0;     ///< of the input
    int sampleRate = 0; ///< Hz
    int channels = 0;
};

/// The format word of the result: the input's, unless the options or the output's extension ask for
/// another. Standard output gets WAV, or the raw samples that were asked for. Throws FileError when
/// there is no such file.
int ChooseOutputFormat(const FormatQuestion& question, const Options& options);

} // namespace Cli
