// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/FFTImpl.h"
#include "frameworks/qobase/util/Realtime.h"

#include <span>
#include <vector>

namespace DSP {

/// Inverse real FFT of a spectrum that is real, by a forward real FFT of half the size.
///
/// For F = 2 * N and values m[0..N]:
///   out[k] = (m[0] + (-1)^k m[N] + 2 * sum over j = 1..N-1 of m[j] cos(pi j k / N)) / F
///
/// The values are folded so that the half-size FFT holds the even outputs in its real parts and the
/// differences of the odd outputs in its imaginary parts.
/// Method: W. H. Press et al., "Numerical Recipes", chapter on sine and cosine transforms.
class CosineTransform {
public:
    /// Makes tables and buffers for N = 2^halfOrder, `halfOrder` from 3 to 16. [setup]
    explicit CosineTransform(int halfOrder);

    /// Writes the first `out.size()` outputs, at most N. `values` holds N + 1 floats. [process]
    void Transform(std::span<const float> values, std::span<float> out) noexcept UTIL_NONBLOCKING;

private:
    float Fold(std::span<const float> values) noexcept UTIL_NONBLOCKING;

    int size; // N
    FFTImpl<float> transform;
    std::vector<float> sines;    // sin(pi j / N) for j < N / 2
    std::vector<float> cosines;  // cos(pi j / N) for j < N / 2
    std::vector<float> folded;   // N + 1, the last one mirrors the first
    std::vector<float> spectrum; // N + 2
};

} // namespace DSP
