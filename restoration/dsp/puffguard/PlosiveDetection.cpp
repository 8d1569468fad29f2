// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/PlosiveDetection.h"

#include "restoration/dsp/puffguard/Ramp.h"
#include "restoration/dsp/puffguard/VectorOps.h"

#include <algorithm>
#include <cmath>

namespace DSP {

namespace {

constexpr float Tiny = 1e-12F; // keeps quotients finite in digital silence

float SumOf(const float* values, int32_t first, int32_t last)
{
    return static_cast<float>(
        VectorOps::Sum(values + first, static_cast<std::size_t>(std::max(last - first, 0))));
}

/// Frames to one side of a peak; an edge is searched from the far one inwards.
struct Side {
    int32_t near;
    int32_t far;
    int32_t step; // outwards
};

int32_t FindEdge(std::span<const float> history, const Side& side, float cut)
{
    const auto valueAt = [&](int32_t i) { return history[static_cast<std::size_t>(i)]; };
    int32_t i = side.far;
    // A sustained peak may have `far` inside `near`: the walk then leads down to the oldest frame.
    while (i != side.near && !(valueAt(i) > cut) && i - side.step >= 0) {
        i -= side.step;
    }
    while (i != side.far && !(valueAt(i + side.step) > valueAt(i))) {
        i += side.step;
    }
    return i;
}

} // namespace

int32_t GetNearestBin(float frequencyHz, int32_t fftSize, float sampleRate) noexcept
    UTIL_NONBLOCKING
{
    const float bin = static_cast<float>(fftSize) * frequencyHz / sampleRate + 0.5F;
    return static_cast<int32_t>(std::min(bin, static_cast<float>(fftSize) * 0.5F));
}

DetectionBands MakeDetectionBands(int32_t fftSize, float sampleRate) noexcept UTIL_NONBLOCKING
{
    DetectionBands bands;
    bands.lowStart = std::max(GetNearestBin(PlosiveBandStartHz, fftSize, sampleRate), 2);
    bands.lowEnd =
        std::max(GetNearestBin(PlosiveBandEndHz, fftSize, sampleRate), bands.lowStart + 1);
    bands.referenceStart = GetNearestBin(ReferenceBandStartHz, fftSize, sampleRate);
    bands.referenceEnd =
        std::max(GetNearestBin(ReferenceBandEndHz, fftSize, sampleRate), bands.referenceStart + 2);
    // Below 800 Hz of sample rate the bands would run out of the spectrum.
    const int32_t binCount = fftSize / 2 + 1;
    bands.lowEnd = std::min(bands.lowEnd, binCount);
    bands.lowStart = std::min(bands.lowStart, bands.lowEnd - 1);
    bands.referenceEnd = std::min(bands.referenceEnd, binCount);
    bands.referenceStart = std::min(bands.referenceStart, bands.referenceEnd);
    return bands;
}

FrameDetection DetectFrame(const float* power,
                           const float* noiseFloor,
                           const DetectionBands& bands) noexcept UTIL_NONBLOCKING
{
    const auto n = static_cast<float>(bands.lowEnd - bands.lowStart);
    const float low = SumOf(power, bands.lowStart, bands.lowEnd);
    const float noise = SumOf(noiseFloor, bands.lowStart, bands.lowEnd);
    const float reference = SumOf(power, bands.referenceStart, bands.referenceEnd);
    const float tilt = Ramp(low / (reference + Tiny), TiltOfVoice, TiltOfAir);
    float whitened = 0;
    for (int32_t k = bands.lowStart; k < bands.lowEnd; ++k) {
        whitened += power[k] / (noiseFloor[k] + Tiny);
    }
    const float mean = ((noise / n) * whitened - low) * 0.5F + low;
    return {mean * (tilt * AirWeight + VoiceWeight), noise};
}

float GetDetectionThreshold(float noise, float sensitivity) noexcept UTIL_NONBLOCKING
{
    return (noise * ThresholdScale * ThresholdSteps) / (sensitivity * sensitivity);
}

PeakTest
TestPeak(std::span<const float> history, int32_t centre, int32_t radius, float threshold) noexcept
    UTIL_NONBLOCKING
{
    const float* const at = history.data() + centre;
    PeakTest test;
    test.centre = at[0];
    test.maximum = VectorOps::Maximum(at - radius, 2 * static_cast<std::size_t>(radius) + 1);
    test.isSustained = at[radius] > threshold;
    const bool isHighest = test.centre == test.maximum && test.maximum > threshold;
    const bool isLocal = test.centre > threshold && test.centre >= at[-1] && test.centre > at[1];
    test.isPeak = isHighest || (isLocal && test.isSustained);
    return test;
}

float GetSeverity(float value, float threshold) noexcept UTIL_NONBLOCKING
{
    return Ramp(value / (threshold + Tiny), 1.0F, FullSeverity);
}

RepairRegion FindRepairRegion(std::span<const float> history,
                              int32_t centre,
                              int32_t radius,
                              const PeakTest& peak,
                              float noise) noexcept UTIL_NONBLOCKING
{
    const float cut = std::sqrt(std::sqrt(peak.maximum * noise * noise * noise));
    int32_t reach = radius;
    if (peak.isSustained) {
        reach = static_cast<int32_t>(VectorOps::IndexOfMinimum(
            history.data() + centre + 1, static_cast<std::size_t>(radius - 1)));
    }
    return {FindEdge(history, {centre - 1, centre - radius, -1}, cut),
            FindEdge(history, {centre + 1, centre + reach, 1}, cut)};
}

} // namespace DSP
