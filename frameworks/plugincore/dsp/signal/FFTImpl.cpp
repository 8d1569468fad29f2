// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/FFTImpl.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <numbers>
#include <stdexcept>

namespace DSP {

namespace {

using Index = std::ptrdiff_t;

std::size_t At(Index position)
{
    return static_cast<std::size_t>(position);
}

double Turn(Index part, Index whole)
{
    return 2.0 * std::numbers::pi * static_cast<double>(part) / static_cast<double>(whole);
}

int CheckOrder(int order)
{
    if (!FFTImpl<float>::IsSupported(order)) {
        throw std::invalid_argument("No transform of this size");
    }
    return order;
}

/// Steps of a turn after which the cosine's table reads as sine.
Index SineShift(Index size)
{
    return 3 * size / 4;
}

} // namespace

FFTImpl<float>::FFTImpl(int newOrder, const Kernels::FftKernels& newKernels)
    : kernels(&newKernels)
    , order(CheckOrder(newOrder))
    , half(1 << (order - 1))
{
    if (IsDirect()) {
        MakeDirectTable();
        return;
    }
    MakeFirstFactors();
    MakeMiddleFactors();
    MakeSeparationTable();
    work.resize(At(Kernels::GetFftWorkSize(half)));
}

// Kernels::FftTables describes how factors lie.
void FFTImpl<float>::MakeFirstFactors()
{
    const Index butterflies = half / Kernels::FftFirstRadix;
    for (Index start = 0; start < butterflies; start += Kernels::FftFirstGroup) {
        const Index end = start + Kernels::FftFirstGroup;
        const auto add = [&](Index power, Index offset, Index length) {
            for (Index p = start; p < end; ++p) {
                first.push_back(static_cast<float>(std::cos(Turn(power * (p + offset), length))));
            }
            for (Index p = start; p < end; ++p) {
                first.push_back(static_cast<float>(-std::sin(Turn(power * (p + offset), length))));
            }
        };
        for (Index input = 0; input < 4; ++input) {
            for (Index power = 1; power < 4; ++power) {
                add(power, input * butterflies, half);
            }
        }
        for (Index power = 1; power < 4; ++power) {
            add(power, 0, half / 4);
        }
    }
}

void FFTImpl<float>::MakeMiddleFactors()
{
    for (Index length = half / Kernels::FftFirstRadix; length > 8; length /= 4) {
        for (Index p = 0; p < length / 4; ++p) {
            for (Index power = 1; power < 4; ++power) {
                middle.push_back(static_cast<float>(std::cos(Turn(power * p, length))));
                middle.push_back(static_cast<float>(-std::sin(Turn(power * p, length))));
            }
        }
    }
}

void FFTImpl<float>::MakeSeparationTable()
{
    for (Index k = 0; k < half / 2; ++k) {
        separation.push_back(static_cast<float>(0.5 * std::cos(Turn(k, GetSize()))));
    }
    for (Index k = 0; k < half / 2; ++k) {
        separation.push_back(static_cast<float>(0.5 * std::sin(Turn(k, GetSize()))));
    }
}

void FFTImpl<float>::MakeDirectTable()
{
    const int size = GetSize();
    for (int n = 0; n < size; ++n) {
        direct.push_back(static_cast<float>(std::cos(Turn(n, size))));
    }
    work.resize(At(size) + 2);
}

Kernels::FftTables FFTImpl<float>::GetTables() noexcept UTIL_NONBLOCKING
{
    return {half, first.data(), middle.data(), separation.data(), work.data()};
}

void FFTImpl<float>::Forward(const float* samples, float* spectrum) noexcept UTIL_NONBLOCKING
{
    if (IsDirect()) {
        std::copy_n(samples, GetSize(), work.data());
        ForwardDirect(spectrum);
        return;
    }
    kernels->forward(GetTables(), samples, spectrum);
}

void FFTImpl<float>::ForwardOfProduct(const float* samples,
                                      const float* window,
                                      float* spectrum) noexcept UTIL_NONBLOCKING
{
    if (IsDirect()) {
        Kernels::GetKernels().overlap.multiply(samples, window, work.data(), At(GetSize()));
        ForwardDirect(spectrum);
        return;
    }
    kernels->forwardOfProduct(GetTables(), samples, window, spectrum);
}

void FFTImpl<float>::ForwardOfProductWithPower(FFTPart part,
                                               const float* samples,
                                               const float* window,
                                               int binCount,
                                               float* spectrum,
                                               float* power) noexcept UTIL_NONBLOCKING
{
    if (IsDirect()) {
        if (part == FFTPart::Last) { // so short that it needs no parts
            Kernels::GetKernels().overlap.multiply(samples, window, work.data(), At(GetSize()));
            ForwardDirectWithPower(binCount, spectrum, power);
        }
        return;
    }
    switch (part) {
    case FFTPart::First:
        kernels->firstPartOfProduct(GetTables(), samples, window);
        break;
    case FFTPart::Middle:
        kernels->middlePart(GetTables());
        break;
    case FFTPart::Last:
        kernels->lastPartWithPower(GetTables(), binCount, spectrum, power);
        break;
    }
}

void FFTImpl<float>::PowerOfPaddedProduct(const float* samples,
                                          const float* window,
                                          int count,
                                          int binCount,
                                          float* power) noexcept UTIL_NONBLOCKING
{
    if (!IsDirect()) {
        kernels->powerOfPaddedProduct(GetTables(), samples, window, count, binCount, power);
        return;
    }
    Kernels::GetKernels().overlap.multiply(samples, window, work.data(), At(count));
    std::fill(work.begin() + count, work.end(), 0.0F);
    for (Index k = 0; k < binCount; ++k) {
        const std::complex<float> bin = GetDirectBin(k);
        power[k] = bin.real() * bin.real() + bin.imag() * bin.imag();
    }
}

void FFTImpl<float>::Inverse(const float* spectrum, float* samples) noexcept UTIL_NONBLOCKING
{
    if (IsDirect()) {
        std::copy_n(spectrum, GetSize() + 2, work.data());
        InverseDirect(samples);
        return;
    }
    kernels->inverse(GetTables(), spectrum, samples);
}

void FFTImpl<float>::AddInverseOfLowBins(FFTPart part,
                                         const float* spectrum,
                                         int binCount,
                                         const float* window,
                                         float* sums) noexcept UTIL_NONBLOCKING
{
    if (IsDirect()) {
        if (part == FFTPart::Last) {
            AddInverseDirect(spectrum, binCount, window, sums);
        }
        return;
    }
    switch (part) {
    case FFTPart::First:
        kernels->firstPartOfLowBins(GetTables(), spectrum, binCount);
        break;
    case FFTPart::Middle:
        kernels->middlePart(GetTables());
        break;
    case FFTPart::Last:
        kernels->addLastPartOfInverse(GetTables(), window, sums);
        break;
    }
}

/// A bin of the transform of what lies in `work`.
std::complex<float> FFTImpl<float>::GetDirectBin(Index bin) const noexcept UTIL_NONBLOCKING
{
    const Index size = GetSize();
    float re = 0;
    float im = 0;
    for (Index n = 0; n < size; ++n) {
        re += work[At(n)] * direct[At(bin * n % size)];
        im -= work[At(n)] * direct[At((bin * n + SineShift(size)) % size)];
    }
    // The table's sine isn't quite 0 at a half turn, but the ends of a real signal's spectrum are.
    return {re, bin == 0 || bin == half ? 0.0F : im};
}

/// The transform of what lies in `work`, as ForwardOfProductWithPower() gives it.
void FFTImpl<float>::ForwardDirectWithPower(int binCount, float* spectrum, float* power) noexcept
    UTIL_NONBLOCKING
{
    for (Index k = 0; k <= half; ++k) {
        const std::complex<float> bin = GetDirectBin(k);
        if (k < binCount) {
            spectrum[2 * k] = bin.real();
            spectrum[2 * k + 1] = bin.imag();
        }
        power[k] = bin.real() * bin.real() + bin.imag() * bin.imag();
    }
}

/// The transform of what lies in `work`.
void FFTImpl<float>::ForwardDirect(float* spectrum) noexcept UTIL_NONBLOCKING
{
    for (Index k = 0; k <= half; ++k) {
        const std::complex<float> bin = GetDirectBin(k);
        spectrum[2 * k] = bin.real();
        spectrum[2 * k + 1] = bin.imag();
    }
}

/// The inverse transform of what lies in `work`.
void FFTImpl<float>::InverseDirect(float* samples) const noexcept UTIL_NONBLOCKING
{
    const Index size = GetSize();
    for (Index n = 0; n < size; ++n) {
        float sum = 0;
        for (Index k = 1; k < half; ++k) {
            sum += work[At(2 * k)] * direct[At(k * n % size)];
            sum -= work[At(2 * k + 1)] * direct[At((k * n + SineShift(size)) % size)];
        }
        const float ends = work[0] + (n % 2 == 0 ? work[At(size)] : -work[At(size)]);
        samples[n] = (2 * sum + ends) / static_cast<float>(size);
    }
}

void FFTImpl<float>::AddInverseDirect(const float* spectrum,
                                      int binCount,
                                      const float* window,
                                      float* sums) noexcept UTIL_NONBLOCKING
{
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-member-init): written before it is read
    std::array<float, LongestDirect> samples;
    std::fill(std::copy_n(spectrum, 2 * binCount, work.begin()), work.end(), 0.0F);
    InverseDirect(samples.data());
    Kernels::GetKernels().overlap.multiplyAdd(samples.data(), window, sums, At(GetSize()));
}

} // namespace DSP
