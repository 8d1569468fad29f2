// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/DcFilter.h"

#include <cstddef>

namespace DSP::Synapse {

namespace {

constexpr double CornerHz = 40.0;
/// Q of the two sections, 1 / (2 cos(pi / 8 * {1, 3})).
constexpr std::array SectionQ{0.54119610014619698, 1.3065629648763766};
constexpr float DenormalOffset = 1e-10F;
// The poles come so close to 1 that above some 840 kHz, as floats, they would lie on the unit
// circle or beyond it. Below, floats do and cost less.
constexpr double LargestPlainRateHz = 400000.0;

} // namespace

DcFilter::DcFilter(double sampleRate)
    : isPrecise(sampleRate > LargestPlainRateHz)
{
    for (std::size_t i = 0; i < SectionQ.size(); ++i) {
        const BiquadCoefficients coefficients = MakeHighpass(CornerHz, sampleRate, SectionQ[i]);
        plain[i].SetCoefficients(coefficients);
        precise[i].SetCoefficients(coefficients);
    }
}

void DcFilter::Reset() noexcept UTIL_NONBLOCKING
{
    for (std::size_t i = 0; i < SectionQ.size(); ++i) {
        plain[i].Reset();
        precise[i].Reset();
    }
    offsetCounter = 0;
}

template <typename Number>
void DcFilter::Filter(std::array<Biquad<Number>, 2>& sections, std::span<float> samples) noexcept
    UTIL_NONBLOCKING
{
    // Copies of the sections stay in registers through the loop.
    Biquad<Number> first = sections[0];
    Biquad<Number> second = sections[1];
    uint8_t counter = offsetCounter;
    for (float& x : samples) {
        const bool positive = counter < 128; // as a signed count: not below 0
        const Number filtered = second.Process(first.Process(static_cast<Number>(x)));
        x = static_cast<float>(filtered) + (positive ? DenormalOffset : -DenormalOffset);
        ++counter;
    }
    sections = {first, second};
    offsetCounter = counter;
}

void DcFilter::Process(std::span<float> samples) noexcept UTIL_NONBLOCKING
{
    if (isPrecise) {
        Filter(precise, samples);
    } else {
        Filter(plain, samples);
    }
}

} // namespace DSP::Synapse
