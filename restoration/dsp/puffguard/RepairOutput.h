// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/signal/DelayLine.h"
#include "frameworks/qobase/util/AlignedVector.h"
#include "restoration/dsp/puffguard/OversampledFilterbank.h"
#include "restoration/dsp/puffguard/RepairSizes.h"
#include "restoration/dsp/puffguard/SpectrumRing.h"

#include <cstdint>
#include <vector>

namespace DSP {

/// What goes out: the input, late, and onto it what repairs have changed in the frames, transformed
/// back. Samples that no repair reaches pass to the bit.
///
/// Threads: Configure() is [setup]; after its first call, with the longest history, it allocates
/// nothing. The others are [process] and don't fail.
class RepairOutput {
public:
    /// `longestDelay` in samples is the largest bank delay that will come, the same at each call.
    void Configure(const RepairSizes& sizes, uint32_t longestDelay, uint32_t repairableBins);

    /// Forgets the input.
    void Clear() noexcept UTIL_NONBLOCKING;

    /// Does a part of what adds to `filterbank` what has changed in a channel of a frame. Between
    /// the parts the frame stays as it is, whatever slot it lies in, and no other one begins.
    void Add(FFTPart part,
             OversampledFilterbank& filterbank,
             const SpectrumRing& spectra,
             uint32_t slot,
             uint32_t channel) noexcept UTIL_NONBLOCKING;

    /// Writes the hop that goes out over the one that has come in.
    void GiveOut(OversampledFilterbank& filterbank, float* const* channels) noexcept
        UTIL_NONBLOCKING;

private:
    std::vector<DelayLine> delays;     // the input of each channel
    Util::AlignedVector<float> change; // scratch: a spectrum of the ring
    bool hasChange = false;            // there is something in it, from the first part on
    uint32_t hopSize = 0;
};

} // namespace DSP
