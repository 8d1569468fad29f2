// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/RepairOutput.h"

#include <cstddef>

namespace DSP {

void RepairOutput::Configure(const RepairSizes& sizes,
                             uint32_t longestDelay,
                             uint32_t repairableBins)
{
    hopSize = sizes.hopSize;
    change.assign(std::size_t{2} * repairableBins, 0.0F);
    if (delays.empty()) {
        delays.assign(sizes.channels, DelayLine(longestDelay));
    }
    for (DelayLine& delay : delays) {
        delay.SetLength(sizes.GetBankDelay());
        delay.Clear();
    }
}

void RepairOutput::Clear() noexcept UTIL_NONBLOCKING
{
    for (DelayLine& delay : delays) {
        delay.Clear();
    }
}

void RepairOutput::Add(FFTPart part,
                       OversampledFilterbank& filterbank,
                       const SpectrumRing& spectra,
                       uint32_t slot,
                       uint32_t channel) noexcept UTIL_NONBLOCKING
{
    if (part == FFTPart::First) {
        hasChange = spectra.GetChange(slot, channel, change.data());
    }
    if (hasChange) {
        filterbank.add(part,
                       static_cast<int32_t>(channel),
                       static_cast<int32_t>(spectra.GetChangedBins(slot)),
                       change.data());
    }
}

void RepairOutput::GiveOut(OversampledFilterbank& filterbank, float* const* channels) noexcept
    UTIL_NONBLOCKING
{
    for (std::size_t channel = 0; channel < delays.size(); ++channel) {
        delays[channel].Process(channels[channel], channels[channel], hopSize);
    }
    filterbank.giveOnto(channels);
}

} // namespace DSP
