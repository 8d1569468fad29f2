// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/Autocorr.h"

#include "restoration/dsp/puffguard/VectorOps.h"

#include <cmath>
#include <cstddef>
#include <numbers>

namespace DSP {

namespace {

constexpr double FramePerLag = 1.8;

} // namespace

int Autocorr::OrderFor(int length)
{
    int order = 3;
    while ((1 << order) < length) {
        ++order;
    }
    return order;
}

Autocorr::Autocorr(int maxLag)
    : frameLength(static_cast<int>(maxLag * FramePerLag))
    , fftOrder(OrderFor(frameLength + maxLag))
    , fftSize(1 << fftOrder)
    , transform(fftOrder)
    , cosineTransform(fftOrder - 1)
    , window(static_cast<std::size_t>(frameLength))
    , compensation(static_cast<std::size_t>(maxLag) + 1)
    , frame(static_cast<std::size_t>(fftSize))
    , spectrum(static_cast<std::size_t>(fftSize) + 2)
    , magnitudes(static_cast<std::size_t>(fftSize) / 2 + 1)
{
    using std::numbers::pi;
    const double n = frameLength;
    for (std::size_t i = 0; i < window.size(); ++i) {
        const double position = static_cast<double>(i) + 0.5;
        window[i] = static_cast<float>(1.0 - std::cos(2.0 * pi * position / n));
    }
    for (std::size_t i = 0; i < compensation.size(); ++i) {
        const auto lag = static_cast<double>(i);
        compensation[i] = static_cast<float>((1.0 - std::cos(lag * 0.5 * pi / n)) * 4.0 + 1.0);
    }
}

void Autocorr::Compute(std::span<const float> older,
                       std::span<const float> newer,
                       std::span<float> correlation) noexcept UTIL_NONBLOCKING
{
    const std::size_t split = older.size();
    VectorOps::Multiply(older.data(), window.data(), frame.data(), split);
    VectorOps::Multiply(newer.data(), window.data() + split, frame.data() + split, newer.size());
    transform.Forward(frame.data(), spectrum.data());
    for (std::size_t bin = 0; bin < magnitudes.size(); ++bin) {
        const float re = spectrum[2 * bin];
        const float im = spectrum[2 * bin + 1];
        magnitudes[bin] = std::sqrt(re * re + im * im);
    }
    cosineTransform.Transform(magnitudes, correlation);
}

void Autocorr::CompensateWindow(std::span<float> correlation) const noexcept UTIL_NONBLOCKING
{
    VectorOps::MultiplyInPlace(compensation.data(), correlation.data(), compensation.size());
    VectorOps::ClampBelow(0.0F, correlation.data(), compensation.size());
}

} // namespace DSP
