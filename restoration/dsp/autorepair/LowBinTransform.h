// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <vector>

namespace AutoRepair {

/// A spectrum by bin, in parts.
struct LowBins {
    explicit LowBins(std::size_t count)
        : re(count)
        , im(count)
    {
    }

    float GetPower(std::size_t bin) const { return re[bin] * re[bin] + im[bin] * im[bin]; }

    std::vector<float> re;
    std::vector<float> im;
};

/// The lowest bins of the discrete Fourier transform of a frame of any even length N, and back.
/// Phases are those of the frame's middle, sample N / 2.
///
/// A window of 36 ms has as many samples as the rate gives, no power of two, and of its bins some
/// 50 are of use: a table of the transform does with them what needs no fast transform.
class LowBinTransform {
public:
    /// `newInverseBins`, at most `newBins`, are those that Inverse() may be given.
    LowBinTransform(int newLength, std::size_t newBins, std::size_t newInverseBins);

    /// Transforms N samples, the first of which is 0, as under a Hann window.
    void Forward(const float* frame, LowBins& spectrum) const;

    /// The frame of a spectrum that is 0 outside the first bins of `spectrum`, as many as the
    /// constructor was given. Writes N samples.
    void Inverse(const LowBins& spectrum, float* frame);

    std::size_t GetBinCount() const { return bins; } ///< of Forward()

private:
    std::size_t half; // N / 2
    std::size_t bins;
    std::size_t inverseBins;
    std::vector<float> byPlace;        // by distance to the middle: cosine, then sine by bin
    std::vector<float> inverseCosines; // by bin, then by distance to the middle
    std::vector<float> inverseSines;
    std::vector<float> even; // scratch: of a frame, by distance to the middle
    std::vector<float> odd;
};

} // namespace AutoRepair
