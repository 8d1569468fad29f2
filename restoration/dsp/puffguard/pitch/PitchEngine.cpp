// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PitchEngine.h"

#include "restoration/dsp/puffguard/RunningExp.h"

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
    , dcFilter(static_cast<double>(sizes.sampleRate))
    , autocorr(sizes.minLag, sizes.maxLag)
    , history(autocorr.GetFrameLength(), sizes.analysisHop / sizes.decimation)
    , tracker(sizes, newDelayFrames)
{
    SetLowpass(DefaultLowpassHz);
    SetHighpass(DefaultHighpassHz);
    SetAveragingTime(DefaultAveragingMs);
    tracker.SetAnalysing(false);
}

void PitchEngine::Reset() noexcept UTIL_NONBLOCKING
{
    phase = 0;
    dcFilter.Reset();
    lowpass.Reset();
    highpass.Reset();
    lowpassSum = 0;
    level = 0;
    history.Reset();
    tracker.Reset();
    pitchHz = 0;
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

void PitchEngine::Process(std::span<float> mono) noexcept UTIL_NONBLOCKING
{
    dcFilter.Process(mono);
    for (const float x : mono) {
        Advance(x);
    }
}

void PitchEngine::Advance(float x) noexcept UTIL_NONBLOCKING
{
    lowpassSum += lowpass.Process(x);
    if (phase == 0) {
        Decimate();
        if (history.GetDueCount() == Autocorr::MaxFrames) {
            RunTracker();
        }
    }
    phase = (phase + 1) & static_cast<uint32_t>(sizes.decimation - 1); // a power of two
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
    history.Append(clipped);
}

/// The runs that are due.
void PitchEngine::RunTracker() noexcept UTIL_NONBLOCKING
{
    const int runs = history.GetDueCount();
    if (runs == 0) {
        return;
    }
    autocorr.Compute(history.GetFrames(), runs);
    history.DropFrames();
    LagEstimate estimate;
    for (int run = 0; run < runs; ++run) {
        estimate = tracker.Run(autocorr.GetCorrelation(run), autocorr.GetFirstLag(run));
    }
    pitchHz = estimate.voiced
                  ? sizes.sampleRate / (static_cast<float>(sizes.decimation) * estimate.lag)
                  : 0.0F;
}

float PitchEngine::GetPitch() noexcept UTIL_NONBLOCKING
{
    RunTracker();
    return pitchHz;
}

} // namespace DSP::Synapse
