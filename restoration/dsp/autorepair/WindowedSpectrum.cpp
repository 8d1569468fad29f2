// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/WindowedSpectrum.h"

#include "restoration/dsp/autorepair/Hann.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numeric>

namespace AutoRepair {

int WindowedSpectrum::PaddedOrder(int length)
{
    return static_cast<int>(std::bit_width(static_cast<unsigned>(length) - 1U)) + 2;
}

WindowedSpectrum::WindowedSpectrum(const Config& newConfig)
    : config(newConfig)
    , length(EvenLength(config.seconds, config.sampleRate))
    , order(PaddedOrder(length))
    , scale(1 << order, config.sampleRate)
    , transform(order - config.shift)
    , bins(scale.FirstFrom(config.highest) + 1)
    , power(static_cast<std::size_t>(transform.GetSize()) / 2 + 1)
{
    const auto step = std::size_t{1} << static_cast<unsigned>(config.shift);
    const std::vector<double> hann = MakeHann(length);
    count = (hann.size() + step - 1) / step;
    const double energy = std::inner_product(hann.begin(), hann.end(), hann.begin(), 0.0);
    // Each sample of the copy stands for `step` of the stream; bins but the first count twice.
    const double factor =
        static_cast<double>(step) / std::sqrt(energy) * std::sqrt(2.0 / (1 << order));
    windows.resize(step * count);
    for (std::size_t place = 0; place < step; ++place) {
        for (std::size_t i = place, j = 0; i < hann.size(); i += step, ++j) {
            windows[place * count + j] = static_cast<float>(hann[i] * factor);
        }
    }
}

int64_t WindowedSpectrum::GetFirst(int64_t centre) const
{
    const int64_t begin = centre - length / 2 + config.lead;
    const int64_t step = int64_t{1} << config.shift;
    return (begin + step - 1) / step;
}

bool WindowedSpectrum::IsReady(const SignalHistory& copy, int64_t centre) const
{
    return GetFirst(centre) + static_cast<int64_t>(count) <= copy.GetEnd();
}

std::span<const float> WindowedSpectrum::Compute(const SignalHistory& copy, int64_t centre)
{
    const int64_t first = GetFirst(centre);
    const int64_t begin = centre - length / 2 + config.lead;
    const auto place = static_cast<std::size_t>((first << config.shift) - begin);
    const float* const window = windows.data() + place * count;
    transform.PowerOfPaddedProduct(
        copy.From(first), window, static_cast<int>(count), bins, power.data());
    return std::span(power).first(static_cast<std::size_t>(bins));
}

} // namespace AutoRepair
