// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/RegionRenderer.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Cli {

/// A place in a recording, as a user says it.
struct WantedTime {
    double value = 0;
    bool isInSamples = false; ///< else in seconds

    double GetFrame(double sampleRate) const { return isInSamples ? value : value * sampleRate; }
};

/// What of a recording is to be repaired, as a user says it.
struct WantedRegion {
    WantedTime start;
    WantedTime end;
    double lowHz = 0;  ///< 0: no lower bound
    double highHz = 0; ///< 0: no upper bound
    std::string name;  ///< what messages call it, such as "line 3"
    /// What of it lies behind the recording's end is left out without a word.
    bool mayHangOver = false;
};

/// Reads "START-END" or "START-END,LOW-HIGH": times in seconds, as m:ss or h:mm:ss, with decimals,
/// or in samples with an "s" behind; frequencies in Hz. Throws UsageError.
WantedRegion ParseRegion(std::string_view text);

/// The same regions in frames of a recording, in their order. Throws FileError for one that isn't
/// in it.
std::vector<Wrapper::RenderRegion>
PlaceRegions(const std::vector<WantedRegion>& wanted, int sampleRate, int64_t frames);

/// Throws FileError when a region is empty, runs backwards, or has frequencies that do.
void CheckRegion(const WantedRegion& region);

} // namespace Cli
