// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/puffguard/DataTail.h"
#include "restoration/dsp/puffguard/OversampledFilterbank.h"

#include <cstdint>
#include <vector>

namespace DSP {

/// Takes one band out of a signal. Bands that border on each other add up to the signal, late by
/// GetLatency(), to within the 1e-6 of full scale of the filterbank: what lies below and above a
/// band is the signal less the band, so that only the band is made.
///
/// Threads: Configure() is [setup]; Process() comes on one thread and allocates nothing.
class Crossover {
public:
    /// Takes its transform from `newPool`, which outlives it. [setup]
    explicit Crossover(ProcessingFFTPool& newPool)
        : bank(newPool)
    {
    }

    struct Setup {
        uint32_t channels = 0;
        double sampleRate = 0;  ///< Hz
        double selectivity = 0; ///< s; see ConfigureBandBank()
        double lowHz = 0;
        double highHz = 0;
    };
    void Configure(const Setup& setup);

    uint32_t GetHop() const { return static_cast<uint32_t>(bank.GetHop()); }
    uint32_t GetLatency() const { return static_cast<uint32_t>(bank.GetLatency()); }

    /// Leaves the band alone of a block of whole hops.
    void Process(uint32_t frames, float* const* channels);

private:
    OversampledFilterbank bank;
    std::vector<float> weights; // of the bins up to the band's last one
    DataTail spectrum;          // of one channel at a time
    std::vector<float> power;   // scratch; the bank makes it besides
    std::vector<float*> pointers;
};

} // namespace DSP
