// SPDX-License-Identifier: ISC
#pragma once

#include <cmath>
#include <cstdint>

namespace AutoRepair {

/// Seconds from one frame to the next: a quarter of the shortest burst.
inline constexpr double HopSeconds = 0.005;

/// The moments at which a recording is judged, the first one at its first sample. [any]
class FrameGrid {
public:
    explicit FrameGrid(int newSampleRate)
        : sampleRate(newSampleRate)
    {
    }

    /// The sample in the middle of a frame; halves go to the even number.
    int64_t GetCentre(int64_t frame) const
    {
        return static_cast<int64_t>(
            std::nearbyint(static_cast<double>(frame) * HopSeconds * sampleRate));
    }

    /// Frames of a recording of so many samples a channel.
    int64_t GetCount(int64_t samples) const
    {
        return static_cast<int64_t>(
                   std::floor(static_cast<double>(samples) / sampleRate / HopSeconds)) +
               1;
    }

private:
    double sampleRate; // Hz
};

} // namespace AutoRepair
