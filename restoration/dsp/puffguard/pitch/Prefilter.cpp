// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/Prefilter.h"

#include "restoration/dsp/puffguard/RunningExp.h"

#include <cmath>

namespace DSP::Synapse {

namespace {

constexpr float LeastLevel = 1e-12F;
constexpr float DefaultLowpassHz = 300;
constexpr float DefaultHighpassHz = 100;
constexpr float DefaultAveragingMs = 8.16F;
// The poles of the first filter come so close to 1 that above some 840 kHz, as floats, they would
// lie on the unit circle or beyond it. Below, floats do and cost less.
constexpr double LargestPlainRateHz = 400000.0;

} // namespace

Prefilter::Prefilter(const AnalysisSizes& sizes)
    : sampleRate(static_cast<double>(sizes.sampleRate))
    , decimatedRate(static_cast<double>(sizes.decimatedRate))
    , decimation(sizes.decimation)
    , isPrecise(sampleRate > LargestPlainRateHz)
    , plain(sampleRate)
    , precise(sampleRate)
{
    SetLowpass(DefaultLowpassHz);
    SetHighpass(DefaultHighpassHz);
    SetAveragingTime(DefaultAveragingMs);
}

void Prefilter::Reset() noexcept UTIL_NONBLOCKING
{
    plain.Reset();
    precise.Reset();
    stages.lowpass.Reset();
    stages.highpass.Reset();
    stages.lowpassSum = 0;
    stages.level = 0;
    stages.samplesLeft = 1;
}

void Prefilter::SetLowpass(float cornerHz) noexcept UTIL_NONBLOCKING
{
    stages.lowpass.SetCoefficients(MakeLowpass(static_cast<double>(cornerHz), sampleRate));
}

void Prefilter::SetHighpass(float cornerHz) noexcept UTIL_NONBLOCKING
{
    stages.highpass.SetCoefficients(MakeHighpass(static_cast<double>(cornerHz), decimatedRate));
}

void Prefilter::SetAveragingTime(float milliseconds) noexcept UTIL_NONBLOCKING
{
    stages.levelCoefficient =
        GetSmootherCoefficient(static_cast<double>(milliseconds) * 0.001, decimatedRate);
}

void Prefilter::SetClippingThreshold(float fraction) noexcept UTIL_NONBLOCKING
{
    stages.clippingThreshold = fraction;
}

std::size_t Prefilter::Process(std::span<const float> samples, float* target) noexcept
    UTIL_NONBLOCKING
{
    if (isPrecise) {
        return Run(precise, samples, target);
    }
    return Run(plain, samples, target);
}

template <typename Number>
std::size_t Prefilter::Run(DcFilter<Number>& dcFilter,
                           std::span<const float> samples,
                           float* target) noexcept UTIL_NONBLOCKING
{
    // Each section waits for its own last output only: in one loop they work side by side. The
    // copies stay in registers.
    DcFilter<Number> dc = dcFilter;
    Stages s = stages;
    float* next = target;
    for (const float x : samples) {
        s.lowpassSum += s.lowpass.Process(dc.Process(x));
        --s.samplesLeft;
        if (s.samplesLeft == 0) {
            s.samplesLeft = decimation;
            *next = s.Decimate();
            ++next;
        }
    }
    dcFilter = dc;
    stages = s;
    return static_cast<std::size_t>(next - target);
}

float Prefilter::Stages::Decimate() noexcept UTIL_NONBLOCKING
{
    const float d = highpass.Process(lowpassSum);
    lowpassSum = 0;
    level += (std::fabs(d) - level) * levelCoefficient;
    level = level < LeastLevel ? 0.0F : level;
    const float threshold = clippingThreshold * level;
    if (d >= threshold) {
        return d - threshold;
    }
    return d <= -threshold ? d + threshold : 0.0F;
}

} // namespace DSP::Synapse
