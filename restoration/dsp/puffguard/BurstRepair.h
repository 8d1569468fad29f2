// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/puffguard/DetectionLog.h"
#include "restoration/dsp/puffguard/PlosiveReduction.h"
#include "restoration/dsp/puffguard/WaitingFrames.h"

#include <cstdint>

namespace DSP {

/// Judges the middle one of the waiting frames; where a burst has its peak there, takes the frames
/// around it down and enters that in the log.
///
/// Threads: Configure() is [setup] and allocates nothing; the others are [process] and don't fail.
class BurstRepair {
public:
    /// The parameters that a hop is repaired by.
    struct Controls {
        float sensitivity = 0;    ///< 0 to 10
        float strength = 0;       ///< 0 to 10
        float frequencyLimit = 0; ///< Hz
    };

    /// Neither is owned; both outlive this.
    BurstRepair(WaitingFrames& newFrames, DetectionLog& newLog)
        : frames(newFrames)
        , log(newLog)
    {
    }

    void Configure(const RepairSizes& newSizes) { sizes = newSizes; }

    /// After the open frame got its detection value and a pitch: `noise` is that of this frame.
    void Run(const Controls& controls, float noise) noexcept UTIL_NONBLOCKING;

private:
    /// A peak that has been found, and what belongs to it.
    struct Plosive {
        PeakTest peak;
        RepairRegion region;
        float threshold = 0;
    };

    void Repair(const Plosive& plosive, const Controls& controls) noexcept UTIL_NONBLOCKING;
    void ScaleSpectra(const RepairRegion& region,
                      const RepairFrames& repaired,
                      int32_t bins,
                      float severity) noexcept UTIL_NONBLOCKING;
    void Log(const Plosive& plosive, DetectionRecord record) noexcept UTIL_NONBLOCKING;
    int64_t GetFrameCentre(int32_t historyIndex) const noexcept UTIL_NONBLOCKING;

    WaitingFrames& frames;
    DetectionLog& log;
    RepairSizes sizes;
};

} // namespace DSP
