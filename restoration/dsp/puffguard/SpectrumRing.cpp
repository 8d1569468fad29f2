// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/SpectrumRing.h"

#include "restoration/dsp/puffguard/VectorOps.h"

#include <algorithm>

namespace DSP {

void SpectrumRing::Configure(uint32_t slots, uint32_t channels, uint32_t newBins)
{
    bins = newBins;
    // Slots are kept when the history gets shorter, so that it can grow again without the heap.
    frames.resize(std::max<std::size_t>(slots, frames.size()));
    for (Frame& frame : frames) {
        frame.current.configure(static_cast<int32_t>(channels), static_cast<int32_t>(2 * bins), 0);
        frame.original.configure(static_cast<int32_t>(channels), static_cast<int32_t>(2 * bins), 0);
        frame.changedBins = 0;
    }
}

void SpectrumRing::Clear() noexcept UTIL_NONBLOCKING
{
    for (Frame& frame : frames) {
        frame.current.zero();
        frame.changedBins = 0;
    }
}

void SpectrumRing::KeepOriginal(uint32_t slot, uint32_t binCount) noexcept UTIL_NONBLOCKING
{
    Frame& frame = frames[slot];
    // What an earlier change has kept is the original, now as before.
    const uint32_t kept = frame.changedBins;
    if (binCount <= kept) {
        return;
    }
    for (int32_t channel = 0; channel < frame.current.GetChannelCount(); ++channel) {
        VectorOps::Copy(frame.current.GetChannel(channel) + std::size_t{2} * kept,
                        frame.original.GetChannel(channel) + std::size_t{2} * kept,
                        std::size_t{2} * (binCount - kept));
    }
    frame.changedBins = binCount;
}

bool SpectrumRing::GetChange(uint32_t slot, uint32_t channel, float* change) const noexcept
    UTIL_NONBLOCKING
{
    const Frame& frame = frames[slot];
    const float* const current = frame.current.GetChannel(static_cast<int32_t>(channel));
    const float* const original = frame.original.GetChannel(static_cast<int32_t>(channel));
    for (std::size_t i = 0; i < std::size_t{2} * frame.changedBins; ++i) {
        change[i] = current[i] - original[i];
    }
    return std::any_of(change, change + std::size_t{2} * frame.changedBins, [](float value) {
        return value != 0;
    });
}

} // namespace DSP
