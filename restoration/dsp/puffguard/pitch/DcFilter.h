// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/pitch/Biquad.h"

#include <cstdint>

namespace DSP::Synapse {

/// Takes direct current away: Butterworth high-pass of fourth order at 40 Hz, worked out in
/// `Number`, float or double. What comes out is never so quiet for long that the filters behind it
/// would fall to denormal numbers.
template <typename Number>
class DcFilter {
public:
    /// `sampleRate` in Hz, 4000 to 1.8 million. [setup]
    explicit DcFilter(double sampleRate)
    {
        first.SetCoefficients(MakeHighpass(CornerHz, sampleRate, FirstQ));
        second.SetCoefficients(MakeHighpass(CornerHz, sampleRate, SecondQ));
    }

    /// Forgets the signal. [process]
    void Reset() noexcept UTIL_NONBLOCKING
    {
        first.Reset();
        second.Reset();
        offsetCounter = 0;
    }

    /// Next output sample. [process]
    float Process(float x) noexcept UTIL_NONBLOCKING
    {
        const bool positive = offsetCounter < 128; // as a signed count: not below 0
        ++offsetCounter;
        const Number filtered = second.Process(first.Process(static_cast<Number>(x)));
        return static_cast<float>(filtered) + (positive ? DenormalOffset : -DenormalOffset);
    }

private:
    static constexpr double CornerHz = 40.0;
    // Q of the two sections, 1 / (2 cos(pi / 8 * {1, 3})).
    static constexpr double FirstQ = 0.54119610014619698;
    static constexpr double SecondQ = 1.3065629648763766;
    static constexpr float DenormalOffset = 1e-10F;

    Biquad<Number> first;
    Biquad<Number> second;
    uint8_t offsetCounter = 0;
};

} // namespace DSP::Synapse
