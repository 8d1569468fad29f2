// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstdint>
#include <span>

/// The arithmetic that finds a plosive: a value for each frame, then a test for a peak of that
/// value in a history whose index 0 is the oldest frame. Single precision, [process].
namespace DSP {

// Constants of the detection, with their reasons.

/// Where the air of a plosive is: above rumble and direct current, below the voice.
constexpr float PlosiveBandStartHz = 20;
constexpr float PlosiveBandEndHz = 70;
/// What that band is compared with: above the lowest fundamentals' first harmonics, where a voice
/// is strong and a burst of air is weak.
constexpr float ReferenceBandStartHz = 200;
constexpr float ReferenceBandEndHz = 400;
/// Low over reference energy: up to the first a frame counts as voice, from the second on as air.
constexpr float TiltOfVoice = 1;
constexpr float TiltOfAir = 6;
/// Weight of a frame that is voice, and what air adds to it: voice alone rarely gets over a
/// threshold that air passes by far, and yet is not lost, since many pops come with a vowel.
constexpr float VoiceWeight = 0.7F;
constexpr float AirWeight = 10;
/// The threshold is noise * ThresholdScale * ThresholdSteps / sensitivity^2: at sensitivity 10 a
/// value counts that is 41 times the noise floor (16 dB), at 5 one of 164 times (22 dB), at 1 of 36
/// dB.
constexpr float ThresholdScale = 16;
constexpr float ThresholdSteps = 256;
/// How many times the threshold a value is when the repair is made in full.
constexpr float FullSeverity = 25;

/// Bin nearest to a frequency, up to the last one of a spectrum of `fftSize` samples. [process]
int32_t GetNearestBin(float frequencyHz, int32_t fftSize, float sampleRate) noexcept
    UTIL_NONBLOCKING;

/// Bins of the band where plosives are and of the reference band; ends are exclusive.
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
