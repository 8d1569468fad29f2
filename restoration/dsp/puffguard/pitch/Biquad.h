// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

namespace DSP::Synapse {

/// Coefficients of a second-order section, a0 = 1.
struct BiquadCoefficients {
    double b0 = 1;
    double b1 = 0;
    double b2 = 0;
    double a1 = 0;
    double a2 = 0;
};

inline constexpr double ButterworthQ = 0.7071068;

/// Bilinear low-pass of second order, exact at the corner. A corner above sampleRate / 2 lets
/// everything pass. Both in Hz. [any]
BiquadCoefficients MakeLowpass(double cornerHz, double sampleRate, double q = ButterworthQ) noexcept
    UTIL_NONBLOCKING;

/// Bilinear high-pass of second order. A corner above sampleRate / 2 lets nothing pass. [any]
BiquadCoefficients
MakeHighpass(double cornerHz, double sampleRate, double q = ButterworthQ) noexcept UTIL_NONBLOCKING;

/// One second-order section with its state, in transposed direct form II; `Number` is float or
/// double.
template <typename Number>
class Biquad {
public:
    /// Keeps the state, so that a running filter may be moved. [process]
    void SetCoefficients(const BiquadCoefficients& c) noexcept UTIL_NONBLOCKING
    {
        b0 = static_cast<Number>(c.b0);
        b1 = static_cast<Number>(c.b1);
        b2 = static_cast<Number>(c.b2);
        a1 = static_cast<Number>(c.a1);
        a2 = static_cast<Number>(c.a2);
    }

    /// Forgets the signal. [process]
    void Reset() noexcept UTIL_NONBLOCKING
    {
        first = 0;
        second = 0;
    }

    /// Next output sample. [process]
    Number Process(Number x) noexcept UTIL_NONBLOCKING
    {
        const Number y = b0 * x + first;
        first = b1 * x - a1 * y + second;
        second = b2 * x - a2 * y;
        return y;
    }

private:
    Number b0 = 1;
    Number b1 = 0;
    Number b2 = 0;
    Number a1 = 0;
    Number a2 = 0;
    Number first = 0;
    Number second = 0;
};

} // namespace DSP::Synapse
