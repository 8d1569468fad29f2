// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/LaneVector.h"
#include "frameworks/plugincore/dsp/kernels/Matrix.h"

#include <cstddef>
#include <span>
#include <vector>

namespace AutoRepair {

/// Spectra of frames, by frame and then by bin, in parts.
class LowSpectra {
public:
    explicit LowSpectra(std::size_t bins)
        : distance(DSP::Kernels::RoundUpColumns(bins))
    {
    }

    /// Makes it so many frames, all 0.
    void SetCount(std::size_t frames)
    {
        re.assign(frames * distance, 0.0F);
        im.assign(frames * distance, 0.0F);
    }
    std::size_t GetCount() const { return re.size() / distance; }
    std::size_t GetDistance() const { return distance; } ///< floats from one frame to the next

    float* GetRe(std::size_t frame) { return re.data() + frame * distance; }
    float* GetIm(std::size_t frame) { return im.data() + frame * distance; }

    float GetPower(std::size_t frame, std::size_t bin) const
    {
        const std::size_t place = frame * distance + bin;
        return re[place] * re[place] + im[place] * im[place];
    }

private:
    std::size_t distance;
    DSP::Kernels::LaneVector re;
    DSP::Kernels::LaneVector im;
};

/// The lowest bins of the discrete Fourier transform of frames of any even length N, and back.
/// Phases are those of the frame's middle, sample N / 2.
///
/// A window of 36 ms has as many samples as the rate gives, no power of two, and of its bins some
/// 50 are of use: a table of the transform does with them what needs no fast transform. Cosines see
/// what is the same on both sides of the middle, sines what isn't, so that half the table will do.
class LowBinTransform {
public:
    /// Frames that are transformed at once, for whom the table is read once.
    static constexpr std::size_t FramesAtOnce = 4;

    /// `newInverseBins`, at most `newBins`, are those that Inverse() reads.
    LowBinTransform(int newLength, std::size_t newBins, std::size_t newInverseBins);

    /// Transforms at most FramesAtOnce frames of N samples, the first of which is 0, as under a
    /// Hann window. Adds at least the first `bins` bins to those of `spectra` from frame `first`
    /// on.
    void Forward(std::span<const float> frames,
                 std::size_t bins,
                 LowSpectra& spectra,
                 std::size_t first);

    /// The frames of spectra that are 0 outside the first bins, from frame `first` on: as many as
    /// `frames` has room for, at most FramesAtOnce.
    void Inverse(LowSpectra& spectra, std::size_t first, std::span<float> frames);

private:
    void Fold(const float* frame, std::size_t number);
    void Unfold(std::size_t number, float* frame) const;

    std::size_t half;      // N / 2
    std::size_t rowLength; // of the tables by place
    std::size_t inverseBins;
    std::size_t placeCount;           // `half`, rounded up to the length of a row
    DSP::Kernels::LaneVector cosines; // by distance to the middle, then by bin
    DSP::Kernels::LaneVector sines;
    DSP::Kernels::LaneVector inverseCosines; // by bin, then by distance to the middle
    DSP::Kernels::LaneVector inverseSines;
    DSP::Kernels::LaneVector even; // scratch: of each frame, by distance to the middle
    DSP::Kernels::LaneVector odd;
};

} // namespace AutoRepair
