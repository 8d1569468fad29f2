// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/pitch/Biquad.h"

#include <array>
#include <cstdint>
#include <span>

namespace DSP::Synapse {

/// What the tracker's input goes through at its full rate: a Butterworth high-pass of fourth order
/// at 40 Hz, which takes direct current away, and a low-pass of second order. What goes into the
/// low-pass is never so quiet for long that it and the filters behind it would fall to denormal
/// numbers.
///
/// Threads: the constructor is [setup], the rest [process], from one thread at a time.
class InputFilters {
public:
    /// `newSampleRate` in Hz, 4000 to 1.8 million. The kernels are those that the processor runs
    /// best unless a test passes others.
    explicit InputFilters(
        double newSampleRate,
        const Kernels::CascadeKernels& newKernels = Kernels::GetKernels().cascade);

    /// Forgets the signal; the corner stays.
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Corner of the low-pass in Hz.
    void SetLowpass(float cornerHz) noexcept UTIL_NONBLOCKING;

    /// Filters the next samples to `outputs`, which has room for as many.
    void Process(std::span<const float> samples, float* outputs) noexcept UTIL_NONBLOCKING;

private:
    void SetSection(std::size_t section, const BiquadCoefficients& c) noexcept UTIL_NONBLOCKING;
    void RunPrecisely(std::span<const float> samples, float offset, float* outputs) noexcept
        UTIL_NONBLOCKING;

    const Kernels::CascadeKernels& kernels;
    double sampleRate; // Hz
    Kernels::Cascade cascade;
    bool isPrecise; // the sections below work instead of the cascade
    std::array<Biquad<double>, 2> preciseDc;
    Biquad<float> preciseLowpass; // behind them
    uint8_t offsetCounter = 0;    // samples, modulo 256
};

} // namespace DSP::Synapse
