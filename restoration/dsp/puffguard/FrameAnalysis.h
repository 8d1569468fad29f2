// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/AlignedVector.h"
#include "restoration/dsp/puffguard/NoiseDetector.h"
#include "restoration/dsp/puffguard/OversampledFilterbank.h"
#include "restoration/dsp/puffguard/PlosiveDetection.h"
#include "restoration/dsp/puffguard/WaitingFrames.h"

#include <cstdint>
#include <vector>

namespace DSP {

/// From the samples of a hop to its frame: spectra, power and detection value.
///
/// Threads: Configure() is [setup] and allocates nothing where no size grows; the others are
/// [process] and don't fail.
class FrameAnalysis {
public:
    /// Writes to the open frame of `newFrames`, which outlives this.
    explicit FrameAnalysis(WaitingFrames& newFrames)
        : frames(newFrames)
    {
    }

    void Configure(const RepairSizes& sizes);

    /// Forgets the noise floor.
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Does a part of the transform of what `filterbank` has of a channel. All channels, from 0 on,
    /// make a frame.
    void Transform(OversampledFilterbank& filterbank, uint32_t channel, FFTPart part) noexcept
        UTIL_NONBLOCKING;
    /// Then the value of the frame.
    void Detect() noexcept UTIL_NONBLOCKING;

    /// What Detect() has found last.
    const FrameDetection& GetDetection() const noexcept UTIL_NONBLOCKING { return detection; }

private:
    WaitingFrames& frames;
    uint32_t binCount = 0;
    Util::AlignedVector<float> channelPower; // scratch: power of one channel
    NoiseDetector noiseDetector;
    std::vector<float> noiseFloor;
    DetectionBands bands;
    FrameDetection detection;
};

} // namespace DSP
