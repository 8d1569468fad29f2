// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"
#include "restoration/dsp/puffguard/DataTail.h"

#include <cstdint>
#include <vector>

namespace DSP {

/// The short-time spectra of the frames that wait to go out, in the bins that repairs may change.
///
/// A slot holds one frame: a spectrum a channel, interleaved (re, im) from bin 0 on. Of a frame
/// that is changed the slot also keeps what it was, so that the change alone can go out.
///
/// Threads: Configure() is [setup] and allocates nothing where no size grows; the others are
/// [process] and don't fail.
class SpectrumRing {
public:
    /// Every slot holds silence afterwards.
    void Configure(uint32_t slots, uint32_t channels, uint32_t newBins);

    /// Silence, unchanged, in every slot.
    void Clear() noexcept UTIL_NONBLOCKING;

    uint32_t GetBinCount() const noexcept { return bins; }

    float* GetSpectrum(uint32_t slot, uint32_t channel) const noexcept UTIL_NONBLOCKING
    {
        return frames[slot].current.GetChannel(static_cast<int32_t>(channel));
    }

    /// Makes the slot's frame one that hasn't been changed; whoever calls it writes its spectra.
    void Renew(uint32_t slot) noexcept UTIL_NONBLOCKING { frames[slot].changedBins = 0; }

    /// To be called before any of the bins below `binCount`, at most GetBinCount(), are changed.
    void KeepOriginal(uint32_t slot, uint32_t binCount) noexcept UTIL_NONBLOCKING;

    /// Bins from 0 on that may have been changed; 0 for a frame that goes out as it came in.
    uint32_t GetChangedBins(uint32_t slot) const noexcept UTIL_NONBLOCKING
    {
        return frames[slot].changedBins;
    }

    /// Writes the channel's spectrum less its original, in the changed bins; false when all of that
    /// is 0.
    bool GetChange(uint32_t slot, uint32_t channel, float* change) const noexcept UTIL_NONBLOCKING;

private:
    struct Frame {
        DataTail current;
        DataTail original; // in the changed bins
        uint32_t changedBins = 0;
    };

    std::vector<Frame> frames;
    uint32_t bins = 0;
};

} // namespace DSP
