// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/pitch/Biquad.h"

#include <array>
#include <cstdint>
#include <span>

namespace DSP::Synapse {

/// Takes direct current away: Butterworth high-pass of fourth order at 40 Hz. What comes out is
/// never so quiet for long that the filters behind it would fall to denormal numbers.
class DcFilter {
public:
    /// `sampleRate` in Hz, 4000 to 1.8 million. [setup]
    explicit DcFilter(double sampleRate);

    /// Forgets the signal. [process]
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Filters the samples in place. [process]
    void Process(std::span<float> samples) noexcept UTIL_NONBLOCKING;

private:
    template <typename Number>
    void Filter(std::array<Biquad<Number>, 2>& sections, std::span<float> samples) noexcept
        UTIL_NONBLOCKING;

    bool isPrecise;
    std::array<Biquad<float>, 2> plain;
    std::array<Biquad<double>, 2> precise;
    uint8_t offsetCounter = 0;
};

} // namespace DSP::Synapse
