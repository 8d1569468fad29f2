// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PitchEngine.h"

#include "restoration/dsp/puffguard/RunningExp.h"

#include <algorithm>
#include <cmath>

namespace DSP::Synapse {

namespace {

constexpr float LeastLevel = 1e-12F;
constexpr float DefaultLowpassHz = 300;
constexpr float DefaultHighpassHz = 100;
constexpr float DefaultAveragingMs = 8.16F;

} // namespace

PitchEngine::PitchEngine(double sampleRate, int newDelayFrames)
    : sizes(AnalysisSizes::ForRate(sampleRate))
    , delayFrames(newDelayFrames)
    , ring(sizes.ringLength)
    , decimatedRing(sizes.ringLength / static_cast<std::size_t>(sizes.decimation))
    , dcFilter(static_cast<double>(sizes.sampleRate))
    , tracker(sizes, newDelayFrames)
{
    SetLowpass(DefaultLowpassHz);
    SetHighpass(DefaultHighpassHz);
    SetAveragingTime(DefaultAveragingMs);
    tracker.SetAnalysing(false);
}

void PitchEngine::Reset() noexcept UTIL_NONBLOCKING
{
    std::fill(ring.begin(), ring.end(), 0.0F);
    std::fill(decimatedRing.begin(), decimatedRing.end(), 0.0F);
    ringPosition = 0;
    dcFilter.Reset();
    lowpass.Reset();
    highpass.Reset();
    lowpassSum = 0;
    level = 0;
    tracker.Reset();
    pitchHz.reset();
    confidence = 0;
}

void PitchEngine::SetLowpass(float cornerHz) noexcept UTIL_NONBLOCKING
{
    lowpass.SetCoefficients(
        MakeLowpass(static_cast<double>(cornerHz), static_cast<double>(sizes.sampleRate)));
}

void PitchEngine::SetHighpass(float cornerHz) noexcept UTIL_NONBLOCKING
{
    highpass.SetCoefficients(
        MakeHighpass(static_cast<double>(cornerHz), static_cast<double>(sizes.decimatedRate)));
}

void PitchEngine::SetAveragingTime(float milliseconds) noexcept UTIL_NONBLOCKING
{
    levelCoefficient = GetSmootherCoefficient(static_cast<double>(milliseconds) * 0.001,
                                              static_cast<double>(sizes.decimatedRate));
}

void PitchEngine::SetClippingThreshold(float fraction) noexcept UTIL_NONBLOCKING
{
    clippingThreshold = fraction;
}

void PitchEngine::SetDynamicProgramming(bool enabled) noexcept UTIL_NONBLOCKING
{
    dynamicProgramming = enabled;
    tracker.SetDynamicProgramming(enabled);
}

void PitchEngine::SetDelegate(AnalysisDelegate* newDelegate) noexcept UTIL_NONBLOCKING
{
    delegate = newDelegate;
    tracker.SetAnalysing(delegate != nullptr);
}

void PitchEngine::BeginBlock() noexcept UTIL_NONBLOCKING
{
    if (delegate != nullptr) {
        delegate->BeginBlock(static_cast<uint32_t>(GetLatency()), ringPosition);
    }
}

void PitchEngine::Process(std::span<float> mono) noexcept UTIL_NONBLOCKING
{
    dcFilter.Process(mono);
    for (const float x : mono) {
        Advance(x);
    }
}

void PitchEngine::Advance(float x) noexcept UTIL_NONBLOCKING
{
    ring[ringPosition] = x;
    if (delegate != nullptr) {
        delegate->AddSample(ring, ringPosition);
    }
    lowpassSum += lowpass.Process(x);
    // Both step sizes are powers of two.
    if ((ringPosition & static_cast<uint32_t>(sizes.decimation - 1)) == 0) {
        Decimate();
    }
    if ((ringPosition & static_cast<uint32_t>(sizes.analysisHop - 1)) == 0) {
        RunTracker();
    }
    if (delegate != nullptr) {
        delegate->AddPitch(pitchHz, confidence);
    }
    ringPosition = ringPosition + 1 == ring.size() ? 0 : ringPosition + 1;
}

void PitchEngine::Decimate() noexcept UTIL_NONBLOCKING
{
    const float d = highpass.Process(lowpassSum);
    lowpassSum = 0;
    level += (std::fabs(d) - level) * levelCoefficient;
    level = level < LeastLevel ? 0.0F : level;
    const float threshold = clippingThreshold * level;
    float clipped = 0;
    if (d >= threshold) {
        clipped = d - threshold;
    } else if (d <= -threshold) {
        clipped = d + threshold;
    }
    decimatedRing[ringPosition / static_cast<uint32_t>(sizes.decimation)] = clipped;
}

void PitchEngine::RunTracker() noexcept UTIL_NONBLOCKING
{
    const auto writePosition = ringPosition / static_cast<uint32_t>(sizes.decimation);
    const LagEstimate estimate = tracker.Run(decimatedRing, writePosition);
    pitchHz.reset();
    if (estimate.voiced) {
        pitchHz = sizes.sampleRate / (static_cast<float>(sizes.decimation) * estimate.lag);
    }
    confidence = estimate.confidence;
}

} // namespace DSP::Synapse
