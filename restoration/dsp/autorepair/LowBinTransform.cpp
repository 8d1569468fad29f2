// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/LowBinTransform.h"

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

} // namespace

LowBinTransform::LowBinTransform(int newLength, std::size_t newBins, std::size_t newInverseBins)
    : half(static_cast<std::size_t>(newLength) / 2)
    , bins(newBins)
    , inverseBins(newInverseBins)
    , even(half)
    , odd(half)
{
    for (std::size_t place = 0; place < half; ++place) {
        for (std::size_t bin = 0; bin < bins; ++bin) {
            byPlace.push_back(static_cast<float>(std::cos(Turn(bin, place, 2 * half))));
        }
        for (std::size_t bin = 0; bin < bins; ++bin) {
            byPlace.push_back(static_cast<float>(std::sin(Turn(bin, place, 2 * half))));
        }
    }
    for (std::size_t bin = 0; bin < inverseBins; ++bin) {
        // Bins above the first stand for their mirror images, too.
        const double share = (bin == 0 ? 1.0 : 2.0) / static_cast<double>(2 * half);
        for (std::size_t place = 0; place < half; ++place) {
            const double turn = Turn(bin, place, 2 * half);
            inverseCosines.push_back(static_cast<float>(share * std::cos(turn)));
            inverseSines.push_back(static_cast<float>(share * std::sin(turn)));
        }
    }
}

void LowBinTransform::Forward(const float* frame, LowBins& spectrum) const
{
    const float* const middle = frame + half;
    float* const re = spectrum.re.data();
    float* const im = spectrum.im.data();
    std::fill_n(re, bins, middle[0]);
    std::fill_n(im, bins, 0.0F);
    for (std::size_t place = 1; place < half; ++place) {
        const float behind = middle[place];
        const float before = *(middle - place);
        const float sum = behind + before;
        const float difference = behind - before;
        const float* const cosines = byPlace.data() + 2 * bins * place;
        const float* const sines = cosines + bins;
        for (std::size_t bin = 0; bin < bins; ++bin) {
            re[bin] += sum * cosines[bin];
            im[bin] -= difference * sines[bin];
        }
    }
}

void LowBinTransform::Inverse(const LowBins& spectrum, float* frame)
{
    std::fill(even.begin(), even.end(), 0.0F);
    std::fill(odd.begin(), odd.end(), 0.0F);
    for (std::size_t bin = 0; bin < inverseBins; ++bin) {
        const float* const cosines = inverseCosines.data() + bin * half;
        const float* const sines = inverseSines.data() + bin * half;
        for (std::size_t place = 0; place < half; ++place) {
            even[place] += spectrum.re[bin] * cosines[place];
            odd[place] += spectrum.im[bin] * sines[place];
        }
    }
    // A window makes a 0 of it whatever it is.
    frame[0] = 0.0F;
    for (std::size_t place = 0; place < half; ++place) {
        frame[half - place] = even[place] + odd[place];
        frame[half + place] = even[place] - odd[place];
    }
}

} // namespace AutoRepair
