// SPDX-License-Identifier: ISC
#pragma once

namespace DSP::Synapse {

/// Coefficients of a second-order section, a0 = 1.
struct BiquadCoefficients {
    float b0 = 1;
    float b1 = 0;
    float b2 = 0;
    float a1 = 0;
    float a2 = 0;
};

inline constexpr double ButterworthQ = 0.7071068;

/// Bilinear low-pass of second order, exact at the corner. A corner above sampleRate / 2 lets
/// everything pass. Both in Hz. [any]
BiquadCoefficients MakeLowpass(double cornerHz, double sampleRate, double q = ButterworthQ);

/// Bilinear high-pass of second order. A corner above sampleRate / 2 lets nothing pass. [any]
BiquadCoefficients MakeHighpass(double cornerHz, double sampleRate, double q = ButterworthQ);

/// One second-order section with its state, in transposed direct form II.
class Biquad {
public:
    /// Keeps the state, so that a running filter may be moved. [process]
    void SetCoefficients(const BiquadCoefficients& newCoefficients) noexcept
    {
        coefficients = newCoefficients;
    }

    /// Forgets the signal. [process]
    void Reset() noexcept
    {
        first = 0;
        second = 0;
    }

    /// Next output sample. [process]
    float Process(float x) noexcept
    {
        const BiquadCoefficients& c = coefficients;
        const float y = c.b0 * x + first;
        first = c.b1 * x - c.a1 * y + second;
        second = c.b2 * x - c.a2 * y;
        return y;
    }

private:
    BiquadCoefficients coefficients;
    float first = 0;
    float second = 0;
};

} // namespace DSP::Synapse
