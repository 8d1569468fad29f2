// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/Biquad.h"

#include <cmath>
#include <numbers>

namespace DSP::Synapse {

namespace {

struct Prototype {
    double cosine;
    double damping; // sin w / (2 Q)
};

Prototype MakePrototype(double cornerHz, double sampleRate, double q) noexcept UTIL_NONBLOCKING
{
    const double w = 2.0 * std::numbers::pi * cornerHz / sampleRate;
    return {std::cos(w), std::sin(w) / (2.0 * q)};
}

BiquadCoefficients Normalise(double b0, double b1, double b2, const Prototype& prototype) noexcept
    UTIL_NONBLOCKING
{
    const double a0 = 1.0 + prototype.damping;
    return {
        b0 / a0, b1 / a0, b2 / a0, -2.0 * prototype.cosine / a0, (1.0 - prototype.damping) / a0};
}

} // namespace

BiquadCoefficients MakeLowpass(double cornerHz, double sampleRate, double q) noexcept
    UTIL_NONBLOCKING
{
    if (cornerHz > sampleRate / 2) {
        return {};
    }
    const Prototype prototype = MakePrototype(cornerHz, sampleRate, q);
    const double gain = 1.0 - prototype.cosine;
    return Normalise(gain / 2, gain, gain / 2, prototype);
}

BiquadCoefficients MakeHighpass(double cornerHz, double sampleRate, double q) noexcept
    UTIL_NONBLOCKING
{
    if (cornerHz > sampleRate / 2) {
        return {0, 0, 0, 0, 0};
    }
    const Prototype prototype = MakePrototype(cornerHz, sampleRate, q);
    const double gain = 1.0 + prototype.cosine;
    return Normalise(gain / 2, -gain, gain / 2, prototype);
}

} // namespace DSP::Synapse
