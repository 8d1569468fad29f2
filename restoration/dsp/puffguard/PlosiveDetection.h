// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstdint>
#include <span>

/// The arithmetic that finds a plosive: a value for each frame, then a test for a peak of that
/// value in a history whose index 0 is the oldest frame. Single precision, [process].
namespace DSP {

/// Bin nearest to a frequency, up to the last one of a spectrum of `fftSize` samples. [process]
int32_t GetNearestBin(float frequencyHz, int32_t fftSize, float sampleRate) noexcept
    UTIL_NONBLOCKING;

/// Bins of the band where plosives are (20 to 70 Hz) and of the band above that they are compared
/// with (200 to 400 Hz); ends are exclusive.
struct DetectionBands {
    int32_t lowStart = 0;
    int32_t lowEnd = 0;
    int32_t referenceStart = 0;
    int32_t referenceEnd = 0;
};

/// Bands of spectra of `fftSize` samples at `sampleRate` Hz, within the spectrum at any rate.
DetectionBands MakeDetectionBands(int32_t fftSize, float sampleRate) noexcept UTIL_NONBLOCKING;

/// What one frame shows.
struct FrameDetection {
    float value = 0; ///< mean of plain and noise-whitened low-band energy, weighted by the tilt
    float noise = 0; ///< noise floor of the low band
};

/// `power` and `noiseFloor` have a value for each bin of the bands.
FrameDetection DetectFrame(const float* power,
                           const float* noiseFloor,
                           const DetectionBands& bands) noexcept UTIL_NONBLOCKING;

/// What the detection value has to exceed: `noise` of the newest frame, `sensitivity` 0 to 10.
/// Infinite, or not a number, at sensitivity 0: nothing exceeds that.
float GetDetectionThreshold(float noise, float sensitivity) noexcept UTIL_NONBLOCKING;

/// Outcome of the peak test.
struct PeakTest {
    bool isPeak = false;
    bool isSustained = false; ///< the value `radius` frames later is above the threshold, too
    float centre = 0;         ///< detection value of the tested frame
    float maximum = 0;        ///< largest value up to `radius` frames away
};

/// Tests the frame at index `centre`: it has the largest value around and that exceeds the
/// threshold, or it is a local peak above the threshold and the level stays above it. The history
/// holds `radius`, at least 2, values on either side.
PeakTest
TestPeak(std::span<const float> history, int32_t centre, int32_t radius, float threshold) noexcept
    UTIL_NONBLOCKING;

/// How far a detection value stands above the threshold: 0 at it, 1 from 25 times on.
float GetSeverity(float value, float threshold) noexcept UTIL_NONBLOCKING;

/// Frames to repair, as indices into the history, both inclusive; empty when the end lies before
/// the start.
struct RepairRegion {
    int32_t start = 0;
    int32_t end = -1;

    bool IsEmpty() const noexcept { return end < start; }
};

/// Frames that belong to the peak at index `centre`: on each side from the outermost one within
/// `radius` that exceeds a level between peak and noise on to the foot of the slope. After a
/// sustained peak the right side ends before the lowest of the next frames instead. `noise` is that
/// of the newest frame.
RepairRegion FindRepairRegion(std::span<const float> history,
                              int32_t centre,
                              int32_t radius,
                              const PeakTest& peak,
                              float noise) noexcept UTIL_NONBLOCKING;

} // namespace DSP
