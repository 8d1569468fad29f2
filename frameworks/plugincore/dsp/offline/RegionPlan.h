// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/offline/Region.h"

#include <cstdint>
#include <vector>

namespace DSP {

/// What the plan of regions needs to know of a recording.
struct RegionPlanSetup {
    int64_t frames = 0;          ///< of the recording
    double rate = 0;             ///< Hz
    double fadeMilliseconds = 0; ///< at the edges of a region
};

/// Why a box can't be worked on.
enum class BoxFault {
    None,
    IsEmpty,       ///< ends where it begins, or before
    IsOutside,     ///< no frame of it lies in the recording
    HasNoBand,     ///< its frequencies run backwards, or aren't above 0
    IsAboveNyquist ///< no frequency of it is in the recording
};

/// Looks at a box by itself. [any]
BoxFault FindFault(const RegionBox& box, const RegionPlanSetup& setup) noexcept;

/// The regions that come of boxes without a fault, in the order of time, none of which touches the
/// next: boxes that overlap or touch, their fades included, become one. What of a box lies outside
/// the recording is left out, and a bound above half the rate is none.
std::vector<Region> PlanRegions(std::vector<RegionBox> boxes, const RegionPlanSetup& setup);

} // namespace DSP
