// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstdint>

namespace DSP {

/// The lengths that a repair works with: set up anew for each stream format and "Latency scaling".
struct RepairSizes {
    float sampleRate = 0;    ///< Hz
    uint32_t channels = 0;   ///< at least 1
    uint32_t frameSize = 0;  ///< F, samples
    uint32_t hopSize = 0;    ///< H, samples
    uint32_t peakRadius = 0; ///< L, frames on either side that a peak is compared with
    uint32_t edgeFrames = 0; ///< M, frames further out that a repair takes its target from

    uint32_t GetBinCount() const noexcept UTIL_NONBLOCKING { return frameSize / 2 + 1; }
    /// History index of the frame that is judged.
    uint32_t GetCentre() const noexcept UTIL_NONBLOCKING { return peakRadius + edgeFrames; }
    /// N, frames that wait: the judged one in their middle.
    uint32_t GetLength() const noexcept UTIL_NONBLOCKING { return GetCentre() * 2 + 1; }
    /// Samples from a hop that comes in to the hop that goes out for it.
    uint32_t GetBankDelay() const noexcept UTIL_NONBLOCKING
    {
        return frameSize - hopSize + hopSize * (GetLength() - 1);
    }
    /// Samples from input to output. The tail collects one hop: it holds back all of it but one
    /// sample.
    uint32_t GetLatency() const noexcept UTIL_NONBLOCKING { return hopSize - 1 + GetBankDelay(); }
    /// The same lengths with a history for another "Latency scaling", 0 to 1.
    RepairSizes WithHistory(float scaling) const noexcept UTIL_NONBLOCKING;
};

} // namespace DSP
