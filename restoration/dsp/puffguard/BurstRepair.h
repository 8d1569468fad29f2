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

    /// After the open frame got its detection value and a pitch: looks for a peak and works out
    /// what the frames' power is to become. `noise` is that of the open frame.
    void Search(const Controls& controls, float noise) noexcept UTIL_NONBLOCKING;
    /// Brings the spectra there, if a peak has been found, and enters that in the log. Once after
    /// each search, before the next frame is the open one.
    void Finish() noexcept UTIL_NONBLOCKING;

private:
    /// A repair from the search to its end.
    struct Plosive {
        PeakTest peak;
        RepairRegion region;
        RepairFrames frames;
        int32_t bins = 0; // repaired; 0 when there is nothing to do
        float threshold = 0;
        float severity = 0;
        float pitchHz = 0; // 0 where unvoiced
        double energyBefore = 0;
    };

    void Reduce(const RepairSettings& settings) noexcept UTIL_NONBLOCKING;
    void ScaleSpectra() noexcept UTIL_NONBLOCKING;
    void Log() noexcept UTIL_NONBLOCKING;
    int64_t GetFrameCentre(int32_t historyIndex) const noexcept UTIL_NONBLOCKING;

    WaitingFrames& frames;
    DetectionLog& log;
    RepairSizes sizes;
    Plosive plosive;
};

} // namespace DSP
