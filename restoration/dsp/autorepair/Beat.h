// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <optional>
#include <span>

namespace AutoRepair {

/// A beat that pops keep to, as a bass drum does and speech doesn't.
struct Beat {
    double seconds = 0;       ///< from one beat to the next
    std::size_t onBeat = 0;   ///< pops whole beats behind the one before, ...
    std::size_t compared = 0; ///< ... of so many that have another one before them soon enough
};

/// Finds the beat of the pops at `times`, in seconds and in order. Nothing when they keep to none,
/// or are too few to say.
std::optional<Beat> FindBeat(std::span<const double> times);

} // namespace AutoRepair
