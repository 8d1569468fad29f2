// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstdint>
#include <vector>

namespace DSP {

/// Delay of one channel by a whole number of samples.
///
/// Memory is taken at construction; a new length within it only moves the place that is read, at
/// once or, while the line is in use, by a crossfade of 128 frames from the old place to the new.
class DelayLine {
public:
    /// Room for delays up to `maxLength` samples. [setup]
    explicit DelayLine(uint32_t maxLength);

    uint32_t GetLength() const noexcept { return length; }
    uint32_t GetMaxLength() const noexcept { return static_cast<uint32_t>(ring.size()) - 1; }

    /// Moves to a new length, in samples, at most the reserved one, without a fade. [process]
    void SetLength(uint32_t newLength) noexcept;
    /// The same, faded while signal runs through the line. [process]
    void FadeToLength(uint32_t newLength) noexcept;

    /// Forgets the signal. [process]
    void Clear() noexcept;

    /// Null input counts as silence; input and output may be the same memory. [process]
    void Process(const float* input, float* output, uint32_t frames) noexcept UTIL_NONBLOCKING;

private:
    void ProcessFading(const float* input, float* output, uint32_t frames) noexcept;
    uint32_t ProcessPiece(const float* input, float* output, uint32_t mostFrames) noexcept;
    float ReadBack(uint32_t samples) const noexcept;

    std::vector<float> ring; // maxLength + 1
    uint32_t writeIndex = 0;
    uint32_t length = 0;
    uint32_t formerLength = 0;
    uint32_t fadeFramesLeft = 0;
    bool inUse = false;
};

} // namespace DSP
