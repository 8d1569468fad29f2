// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/NoiseDetector.h"

#include "restoration/dsp/puffguard/VectorOps.h"

#include <algorithm>
#include <cmath>

namespace DSP {

namespace {

constexpr double AverageSeconds = 0.01; // half length
constexpr double MinimumSeconds = 2.0;
constexpr double RiseSeconds = 10.0;
constexpr double FallSeconds = 0.1;
constexpr float InitialPower = 1.0F;
constexpr float NoMinimum = -1000000.0F;
constexpr float SmallestAverage = 1e-30F;

uint32_t FramesIn(double seconds, float rate, uint32_t hop)
{
    return static_cast<uint32_t>(std::lround(static_cast<double>(rate) * seconds / hop));
}

} // namespace

void NoiseDetector::configure(
    uint32_t newBinCount, float rate, uint32_t hop, float newFloor, BinRange newRange)
{
    binCount = newBinCount;
    floor = newFloor;
    range = {std::min(newRange.first, newBinCount), std::min(newRange.last, newBinCount)};
    const std::size_t count = range.last > range.first ? range.last - range.first : 0;
    const uint32_t halfLength = std::max(FramesIn(AverageSeconds, rate, hop), 2U);
    startUpFrames = 2 * halfLength + 1;
    smoother.configure(count, halfLength, InitialPower);
    minimum.configure(count, FramesIn(MinimumSeconds, rate, hop), NoMinimum);
    tracker.configure(
        count, RiseSeconds, FallSeconds, static_cast<double>(rate) / hop, InitialPower);
    frameCount = 0;
}

void NoiseDetector::reset() noexcept UTIL_NONBLOCKING
{
    smoother.reset();
    minimum.reset();
    tracker.reset();
    frameCount = 0;
}

bool NoiseDetector::IsSilent(const float* power) const noexcept UTIL_NONBLOCKING
{
    const auto sum = static_cast<float>(VectorOps::Sum(power, binCount));
    return sum < static_cast<float>(binCount) * floor &&
           VectorOps::Maximum(power, binCount) < floor * 16;
}

void NoiseDetector::process(const float* power, float* out) noexcept UTIL_NONBLOCKING
{
    if (frameCount == 0 && IsSilent(power)) {
        VectorOps::Copy(power + range.first, out + range.first, smoother.GetCount());
        return;
    }
    const bool isStartUp = frameCount < startUpFrames;
    for (std::size_t i = 0; i < smoother.GetCount(); ++i) {
        const std::size_t bin = range.first + i;
        RunningHann<float>& average = smoother[i];
        const float x = power[bin] <= floor ? average.GetCurrent() : power[bin];
        float y = average.process(x) * average.GetScale();
        y = y < SmallestAverage ? 0.0F : y;
        const float lowest = -minimum[i].process(-y);
        if (isStartUp) {
            tracker.SetState(i, lowest);
            out[bin] = power[bin] * 0.5F;
        } else {
            out[bin] = tracker.process(i, lowest);
        }
    }
    ++frameCount;
}

} // namespace DSP
