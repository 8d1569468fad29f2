// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/SpanRepair.h"
#include "wrappers/cli/autorepair/RepeatedInput.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Cli {

/// A part of a recording that moves forward over it, as wide as is asked for. Throws FileError.
class MovingExcerpt {
public:
    /// Reads `newInput` from its first sample, so many frames at a time.
    MovingExcerpt(RepeatedInput& newInput, size_t newFramesAtOnce);

    /// What of `reach` lies in the recording; `reach.first` is never below the one before. Valid
    /// until the next call.
    AutoRepair::Excerpt Cover(const AutoRepair::Reach& reach);

private:
    void ReadOn();

    RepeatedInput& input;
    size_t channels;
    size_t framesAtOnce;
    int64_t first = 0;           // number of the oldest frame that is held
    std::vector<double> samples; // interleaved
    bool hasEnded = false;
};

} // namespace Cli
