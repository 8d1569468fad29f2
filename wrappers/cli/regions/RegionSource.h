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
    void ReadOn();
    void CopyOut(int64_t position, size_t frames, size_t offset, float* const* channels) const;

    RepeatedInput& input;
    size_t channelCount;
    size_t keptFrames;
    std::vector<float> kept;     // interleaved, a ring: frame n lies at n % keptFrames
    std::vector<double> scratch; // a piece as it is read
};

} // namespace Cli
