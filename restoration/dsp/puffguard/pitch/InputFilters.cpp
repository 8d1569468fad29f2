// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/InputFilters.h"

#include <algorithm>

namespace DSP::Synapse {

namespace {

constexpr double DcCornerHz = 40.0;
// Q of the two sections, 1 / (2 cos(pi / 8 * {1, 3})).
constexpr std::array<double, 2> DcQ{0.54119610014619698, 1.3065629648763766};
constexpr std::size_t Lowpass = 2; // its number in the cascade
constexpr float DefaultLowpassHz = 300;

constexpr float DenormalOffset = 1e-10F;
constexpr std::size_t OffsetStretch = 128; // samples with the same sign of the offset

// The poles of the high-pass come so close to 1 that above some 840 kHz, as floats, they would lie
// on the unit circle or beyond it. Below, floats do and cost less.
constexpr double LargestPlainRateHz = 400000.0;

} // namespace

InputFilters::InputFilters(double newSampleRate, const Kernels::CascadeKernels& newKernels)
    : kernels(newKernels)
    , sampleRate(newSampleRate)
    , isPrecise(newSampleRate > LargestPlainRateHz)
{
    cascade.offset.fill(-0.0F); // changes nothing that it is added to
    for (std::size_t i = 0; i < DcQ.size(); ++i) {
        const BiquadCoefficients coefficients = MakeHighpass(DcCornerHz, sampleRate, DcQ[i]);
        SetSection(i, coefficients);
        preciseDc[i].SetCoefficients(coefficients);
    }
    SetLowpass(DefaultLowpassHz);
}

void InputFilters::SetSection(std::size_t section, const BiquadCoefficients& c) noexcept
    UTIL_NONBLOCKING
{
    cascade.b0[section] = static_cast<float>(c.b0);
    cascade.b1[section] = static_cast<float>(c.b1);
    cascade.b2[section] = static_cast<float>(c.b2);
    cascade.a1[section] = static_cast<float>(c.a1);
    cascade.a2[section] = static_cast<float>(c.a2);
}

void InputFilters::Reset() noexcept UTIL_NONBLOCKING
{
    cascade.first.fill(0);
    cascade.second.fill(0);
    for (Biquad<double>& section : preciseDc) {
        section.Reset();
    }
    preciseLowpass.Reset();
    offsetCounter = 0;
}

void InputFilters::SetLowpass(float cornerHz) noexcept UTIL_NONBLOCKING
{
    const BiquadCoefficients coefficients = MakeLowpass(static_cast<double>(cornerHz), sampleRate);
    SetSection(Lowpass, coefficients);
    preciseLowpass.SetCoefficients(coefficients);
}

void InputFilters::Process(std::span<const float> samples, float* outputs) noexcept UTIL_NONBLOCKING
{
    while (!samples.empty()) {
        const std::size_t untilTurn = OffsetStretch - offsetCounter % OffsetStretch;
        const auto piece = samples.first(std::min(samples.size(), untilTurn));
        const float offset = offsetCounter < OffsetStretch ? DenormalOffset : -DenormalOffset;
        if (isPrecise) {
            RunPrecisely(piece, offset, outputs);
        } else {
            cascade.offset[Lowpass] = offset;
            kernels.run(cascade, piece.data(), outputs, static_cast<std::ptrdiff_t>(piece.size()));
        }
        offsetCounter = static_cast<uint8_t>(offsetCounter + piece.size());
        outputs += piece.size();
        samples = samples.subspan(piece.size());
    }
}

/// The same with a high-pass in double.
void InputFilters::RunPrecisely(std::span<const float> samples,
                                float offset,
                                float* outputs) noexcept UTIL_NONBLOCKING
{
    for (std::size_t i = 0; i < samples.size(); ++i) {
        auto x = static_cast<double>(samples[i]);
        for (Biquad<double>& section : preciseDc) {
            x = section.Process(x);
        }
        outputs[i] = preciseLowpass.Process(static_cast<float>(x) + offset);
    }
}

} // namespace DSP::Synapse
