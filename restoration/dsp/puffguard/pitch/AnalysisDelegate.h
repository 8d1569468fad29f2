// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstdint>
#include <optional>
#include <span>

namespace DSP::Synapse {

/// Takes in what the pitch analysis finds, sample by sample. All calls are [process].
class AnalysisDelegate {
public:
    AnalysisDelegate() = default;
    AnalysisDelegate(const AnalysisDelegate&) = delete;
    AnalysisDelegate(AnalysisDelegate&&) = delete;
    AnalysisDelegate& operator=(const AnalysisDelegate&) = delete;
    AnalysisDelegate& operator=(AnalysisDelegate&&) = delete;
    virtual ~AnalysisDelegate() = default;

    /// A block begins. `delay` is that of the pitch against the input, in samples; `phase` the
    /// place in the ring where the block's first sample goes.
    virtual void BeginBlock(uint32_t delay, uint32_t phase) noexcept UTIL_NONBLOCKING = 0;

    /// The next sample has been written to `ring` at `position`. The ring is longer than the delay.
    virtual void AddSample(std::span<const float> ring, uint32_t position) noexcept
        UTIL_NONBLOCKING = 0;

    /// Pitch in Hz at this sample, empty when unvoiced, and the confidence in it, 0 to 1.
    virtual void AddPitch(std::optional<float> pitchHz, float confidence) noexcept
        UTIL_NONBLOCKING = 0;

    /// Forgets everything, as after construction.
    virtual void Clear() noexcept UTIL_NONBLOCKING = 0;
};

} // namespace DSP::Synapse
