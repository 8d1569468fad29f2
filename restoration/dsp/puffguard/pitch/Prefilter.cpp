// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/Prefilter.h"

#include "restoration/dsp/puffguard/RunningExp.h"

#include <array>
#include <cassert>
#include <cmath>

namespace DSP::Synapse {

namespace {

constexpr float LeastLevel = 1e-12F;
constexpr float DefaultHighpassHz = 100;
constexpr float DefaultAveragingMs = 8.16F;

} // namespace

Prefilter::Prefilter(const AnalysisSizes& sizes)
    : decimatedRate(static_cast<double>(sizes.decimatedRate))
    , decimation(sizes.decimation)
    , input(static_cast<double>(sizes.sampleRate))
{
    SetHighpass(DefaultHighpassHz);
    SetAveragingTime(DefaultAveragingMs);
}

void Prefilter::Reset() noexcept UTIL_NONBLOCKING
{
    input.Reset();
    stages.highpass.Reset();
    stages.sum = 0;
    stages.samplesLeft = 1;
    stages.level = 0;
}

void Prefilter::SetLowpass(float cornerHz) noexcept UTIL_NONBLOCKING
{
    input.SetLowpass(cornerHz);
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
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
    std::array<float, MostSamples> filtered;
    assert(samples.size() <= filtered.size());
    input.Process(samples, filtered.data());
    Stages s = stages; // the copy stays in registers
    float* next = target;
    for (const float y : std::span(filtered).first(samples.size())) {
        s.sum += y;
        --s.samplesLeft;
        if (s.samplesLeft == 0) {
            s.samplesLeft = decimation;
            *next = s.Decimate();
            ++next;
        }
    }
    stages = s;
    return static_cast<std::size_t>(next - target);
}

float Prefilter::Stages::Decimate() noexcept UTIL_NONBLOCKING
{
    const float d = highpass.Process(sum);
    sum = 0;
    level += (std::fabs(d) - level) * levelCoefficient;
    level = level < LeastLevel ? 0.0F : level;
    const float threshold = clippingThreshold * level;
    if (d >= threshold) {
        return d - threshold;
    }
    return d <= -threshold ? d + threshold : 0.0F;
}

} // namespace DSP::Synapse
