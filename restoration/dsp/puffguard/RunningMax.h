// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace DSP {

template <typename T>
class RunningMax;
template <typename T>
class RunningMaxs;

/// Largest of the last m values: a tournament tree whose leaves are a ring, log2(m) comparisons a
/// value whatever the data.
///
/// Method: tree selection, D. E. Knuth, "The Art of Computer Programming", volume 3, section 5.2.3.
///
/// Threads: configure() is [setup] and allocates nothing where the length doesn't grow; the others
/// are [process].
template <>
class RunningMax<float> {
public:
    /// Sets the length m, taken as 1 when it is 0, and what counts as the input of the past.
    void configure(uint32_t newLength, float newFillValue);

    /// Forgets all input.
    void reset() noexcept UTIL_NONBLOCKING;

    /// Takes the next value; answers the largest of the last m.
    float process(float value) noexcept UTIL_NONBLOCKING;

private:
    uint32_t length = 1;
    uint32_t cursor = 1;     // leaf of the next value, from `length` to 2 `length` - 1
    std::vector<float> tree; // node i has the children 2i and 2i + 1; the root is 1, 0 is unused
    float fillValue = 0;
};

/// A RunningMax for each of a number of bins.
template <>
class RunningMaxs<float> {
public:
    /// See RunningMax::configure(). [setup]
    void configure(std::size_t count, uint32_t length, float fillValue);

    /// [process]
    void reset() noexcept UTIL_NONBLOCKING;

    RunningMax<float>& operator[](std::size_t bin) noexcept { return entries[bin]; }

private:
    std::vector<RunningMax<float>> entries;
};

} // namespace DSP
