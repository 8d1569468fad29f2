// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/LowBinTransform.h"

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace AutoRepair {

namespace {

// Reduced to one turn first: large angles would lose digits.
double Turn(std::size_t bin, std::size_t place, std::size_t length)
{
    return 2.0 * std::numbers::pi * static_cast<double>(bin * place % length) /
           static_cast<double>(length);
}

void MultiplyAdd(const DSP::Kernels::MatrixProduct& product, float* target, std::size_t distance)
{
    DSP::Kernels::GetKernels().matrix.multiplyAdd(product, target, distance);
}

} // namespace

LowBinTransform::LowBinTransform(int newLength, std::size_t newBins, std::size_t newInverseBins)
    : half(static_cast<std::size_t>(newLength) / 2)
    , rowLength(DSP::Kernels::RoundUpColumns(newBins))
    , inverseBins(newInverseBins)
    , placeCount(DSP::Kernels::RoundUpColumns(half))
    , cosines(half * rowLength)
    , sines(half * rowLength)
    , inverseCosines(inverseBins * placeCount)
    , inverseSines(inverseBins * placeCount)
    , even(FramesAtOnce * placeCount)
    , odd(FramesAtOnce * placeCount)
{
    for (std::size_t place = 0; place < half; ++place) {
        for (std::size_t bin = 0; bin < newBins; ++bin) {
            const double turn = Turn(bin, place, 2 * half);
            cosines[place * rowLength + bin] = static_cast<float>(std::cos(turn));
            sines[place * rowLength + bin] = static_cast<float>(std::sin(turn));
        }
    }
    for (std::size_t bin = 0; bin < inverseBins; ++bin) {
        // Bins above the first stand for their mirror images, too.
        const double share = (bin == 0 ? 1.0 : 2.0) / static_cast<double>(2 * half);
        for (std::size_t place = 0; place < half; ++place) {
            const double turn = Turn(bin, place, 2 * half);
            inverseCosines[bin * placeCount + place] = static_cast<float>(share * std::cos(turn));
            inverseSines[bin * placeCount + place] = static_cast<float>(share * std::sin(turn));
        }
    }
}

void LowBinTransform::Fold(const float* frame, std::size_t number)
{
    const float* const middle = frame + half;
    float* const sums = even.data() + number * placeCount;
    float* const differences = odd.data() + number * placeCount;
    sums[0] = middle[0];
    differences[0] = 0.0F;
    for (std::size_t place = 1; place < half; ++place) {
        const float behind = middle[place];
        const float before = *(middle - place);
        sums[place] = behind + before;
        differences[place] = before - behind;
    }
}

void LowBinTransform::Forward(std::span<const float> frames,
                              std::size_t bins,
                              LowSpectra& spectra,
                              std::size_t first)
{
    const std::size_t count = frames.size() / (2 * half);
    for (std::size_t i = 0; i < count; ++i) {
        Fold(frames.data() + 2 * half * i, i);
    }
    const std::size_t columns = DSP::Kernels::RoundUpColumns(bins);
    const std::size_t distance = spectra.GetDistance();
    MultiplyAdd({count, half, columns, even.data(), placeCount, cosines.data(), rowLength},
                spectra.GetRe(first),
                distance);
    MultiplyAdd({count, half, columns, odd.data(), placeCount, sines.data(), rowLength},
                spectra.GetIm(first),
                distance);
}

void LowBinTransform::Unfold(std::size_t number, float* frame) const
{
    const float* const sums = even.data() + number * placeCount;
    const float* const differences = odd.data() + number * placeCount;
    frame[0] = 0.0F; // a window makes a 0 of it whatever it is
    for (std::size_t place = 0; place < half; ++place) {
        frame[half - place] = sums[place] + differences[place];
        frame[half + place] = sums[place] - differences[place];
    }
}

void LowBinTransform::Inverse(LowSpectra& spectra, std::size_t first, std::span<float> frames)
{
    const std::size_t count = frames.size() / (2 * half);
    const std::size_t distance = spectra.GetDistance();
    std::fill(even.begin(), even.end(), 0.0F);
    std::fill(odd.begin(), odd.end(), 0.0F);
    MultiplyAdd({count,
                 inverseBins,
                 placeCount,
                 spectra.GetRe(first),
                 distance,
                 inverseCosines.data(),
                 placeCount},
                even.data(),
                placeCount);
    MultiplyAdd({count,
                 inverseBins,
                 placeCount,
                 spectra.GetIm(first),
                 distance,
                 inverseSines.data(),
                 placeCount},
                odd.data(),
                placeCount);
    for (std::size_t i = 0; i < count; ++i) {
        Unfold(i, frames.data() + 2 * half * i);
    }
}

} // namespace AutoRepair
