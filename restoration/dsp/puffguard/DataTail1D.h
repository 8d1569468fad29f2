// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace DSP {

/// Samples of one channel: a tail of older values and room for a block of new ones behind it.
///
/// Threads: configure() is [setup] and allocates nothing where the sizes don't grow; the others are
/// [process].
class DataTail1D {
public:
    /// Lengths in samples. With `isCleared` all values are zero and appending starts at the tail's
    /// end; otherwise they stay where they are.
    void configure(int32_t newBlockLength, int32_t newTailLength, bool isCleared);

    /// Copies `count` values from `source` + `sourceOffset` behind those that are there. They must
    /// fit: no more than a block between two calls of consume().
    void append(const float* source, int32_t count, int32_t sourceOffset) noexcept UTIL_NONBLOCKING;

    /// Drops the oldest `count` values: as many as make up the tail move to the front, and
    /// appending goes on at the tail's end.
    void consume(int32_t count) noexcept UTIL_NONBLOCKING;

    /// Zeroes everything.
    void clear() noexcept UTIL_NONBLOCKING;

    float* GetData() noexcept { return values.data(); }
    const float* GetData() const noexcept { return values.data(); }

private:
    std::size_t GetLength() const noexcept
    {
        return static_cast<std::size_t>(tailLength) + static_cast<std::size_t>(blockLength);
    }

    std::vector<float> values; // GetLength()
    int32_t tailLength = 0;
    int32_t writeIndex = 0;
    int32_t blockLength = 0;
};

} // namespace DSP
