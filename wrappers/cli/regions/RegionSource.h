// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/autorepair/RepeatedInput.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Cli {

/// A recording in single precision, read forward but for some seconds back: these are kept. Further
/// back it's read from the start again, which takes its time. Throws FileError.
class RegionSource {
public:
    /// Keeps the last `newKeptFrames` frames. `newInput` outlives this.
    RegionSource(RepeatedInput& newInput, size_t newKeptFrames);

    /// Fills one array of `frames` floats a channel; `position` and what follows lies in the
    /// recording.
    void Read(int64_t position, uint32_t frames, float* const* channels);

private:
    void Restart();
    void ReadOn();

    RepeatedInput& input;
    size_t channelCount;
    size_t keptFrames;
    int64_t first = 0;           // number of the oldest frame that is kept
    std::vector<float> kept;     // interleaved
    std::vector<double> scratch; // a piece as it is read
};

} // namespace Cli
