// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace DSP {

template <typename T>
class RunningHann;
template <typename T>
class RunningHanns;

/// Moving average over the last N = 2n + 1 values with the weights 1 - cos(2 pi (i + 1/2) / N), at
/// a cost that doesn't depend on N.
///
/// A boxcar sum and the first harmonic of the window's values are kept by recursion: the value that
/// leaves is subtracted, and the rest turns by 2 pi / N. A second pair without subtraction starts
/// afresh once per window and takes over at its end, which throws away the rounding of the first.
///
/// Method: E. Jacobsen, R. Lyons, "The sliding DFT", IEEE Signal Processing Magazine 20(2), 2003.
///
/// Threads: configure() is [setup] and allocates nothing where the length doesn't grow; the others
/// are [process].
template <>
class RunningHann<float> {
public:
    /// Sets the half length n, at least 0, and what counts as the input of the past.
    void configure(uint32_t newHalfLength, float newFillValue);

    /// Forgets all input; the past is the fill value again.
    void reset() noexcept UTIL_NONBLOCKING;

    /// Takes the next value. The result times GetScale() is the average.
    float process(float x) noexcept UTIL_NONBLOCKING;

    /// The average of what has come in so far.
    float GetCurrent() const noexcept UTIL_NONBLOCKING { return (sum + re) * scale; }

    float GetScale() const noexcept { return scale; } ///< 1 / (2n + 1)

private:
    bool primed = false; // nothing has come in since the last reset
    uint32_t halfLength = 0;
    uint32_t position = 0;
    std::vector<float> delayLine; // the last N values, the oldest at `position`
    float fillValue = 0;
    float scale = 1;
    float c = 0; // turn of one step, 2 pi / N
    float s = 0;
    float g = 0; // how an entering value adds to the harmonic: half a step past the window's edge
    float h = 0;
    float re = 0;
    float im = 0;
    float sum = 0;
    float freshRe = 0;
    float freshIm = 0;
    float freshSum = 0;
};

/// A RunningHann for each of a number of bins.
template <>
class RunningHanns<float> {
public:
    /// See RunningHann::configure(). [setup]
    void configure(std::size_t count, uint32_t halfLength, float fillValue);

    /// [process]
    void reset() noexcept UTIL_NONBLOCKING;

    RunningHann<float>& operator[](std::size_t bin) noexcept { return entries[bin]; }
    std::size_t GetCount() const noexcept { return entries.size(); }

private:
    std::vector<RunningHann<float>> entries;
};

} // namespace DSP
