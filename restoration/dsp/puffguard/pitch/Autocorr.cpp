// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/Autocorr.h"

#include <cmath>
#include <numbers>

namespace DSP {

namespace {

constexpr double FramePerLag = 1.8;

double Turn(int part, int whole)
{
    return 2.0 * std::numbers::pi * part / whole;
}

/// Where the stages in place put the element of this index.
int GetPlace(int index, int length)
{
    if (length <= 8) {
        return index;
    }
    const int quarter = length / 4;
    return index % 4 * quarter + GetPlace(index / 4, quarter);
}

} // namespace

Autocorr::TransformTables::TransformTables(int length)
{
    for (int stage = length; stage > 8; stage /= 4) {
        for (int p = 0; p < stage / 4; ++p) {
            for (int factor = 1; factor < 4; ++factor) {
                factors.push_back(static_cast<float>(std::cos(Turn(factor * p, stage))));
                factors.push_back(static_cast<float>(-std::sin(Turn(factor * p, stage))));
            }
        }
    }
    for (int k = 0; k < length / 2; ++k) {
        separation.push_back(static_cast<float>(std::cos(Turn(k, 2 * length))));
        separation.push_back(static_cast<float>(std::sin(Turn(k, 2 * length))));
    }
    separation.insert(separation.end(), {0.0F, 1.0F}); // of the middle bin, exactly
    for (int index = 0; index < length; ++index) {
        order.push_back(GetPlace(index, length));
    }
    order.push_back(0); // bin 0 is its own mirror image
}

Kernels::TransformPlan Autocorr::TransformTables::GetPlan() const noexcept
{
    return {.length = static_cast<std::ptrdiff_t>(order.size()) - 1,
            .factors = factors.data(),
            .separation = separation.data(),
            .order = order.data()};
}

int Autocorr::SizeFor(int length)
{
    int size = 64;
    while (size < length) {
        size *= 2;
    }
    return size;
}

Autocorr::Autocorr(int minLag, int maxLag, const Kernels::CorrelationKernels& newKernels)
    : kernels(newKernels)
    , frameLength(static_cast<int>(maxLag * FramePerLag))
    , fftSize(SizeFor(frameLength + maxLag))
    , lagCount(maxLag + 1)
    , whole(fftSize / 2)
    , half(fftSize / 4)
{
    MakeFoldTables();
    MakeLagTables();
    plan = {.frameLength = frameLength,
            .minLag = minLag,
            .maxLag = maxLag,
            .whole = whole.GetPlan(),
            .half = half.GetPlan(),
            .window = window.data(),
            .sines = sines.data(),
            .cosines = cosines.data(),
            .compensation = compensation.data()};
    scratch.resize(static_cast<std::size_t>(Kernels::GetCorrelationScratch(plan)));
    correlations.resize(static_cast<std::size_t>(MaxFrames) *
                        static_cast<std::size_t>(Kernels::GetCorrelationStride(maxLag)));
}

void Autocorr::MakeFoldTables()
{
    for (int j = 0; j < fftSize / 4; ++j) {
        sines.push_back(static_cast<float>(2 * std::sin(Turn(j, fftSize))));
        cosines.push_back(static_cast<double>(static_cast<float>(4 * std::cos(Turn(j, fftSize)))));
    }
}

void Autocorr::MakeLagTables()
{
    using std::numbers::pi;
    const double n = frameLength;
    for (int i = 0; i < frameLength; ++i) {
        window.push_back(static_cast<float>(1.0 - std::cos(2.0 * pi * (i + 0.5) / n)));
    }
    window.push_back(0); // samples go through in pairs
    for (int lag = 0; lag <= lagCount; ++lag) {
        const double weight = (1.0 - std::cos(lag * 0.5 * pi / n)) * 4.0 + 1.0;
        compensation.push_back(static_cast<float>(weight / (4.0 * fftSize)));
    }
}

void Autocorr::ComputePart(int part, const Kernels::PolyphaseView& source, int frames) noexcept
    UTIL_NONBLOCKING
{
    kernels.correlatePart(
        part, plan, source, frames, scratch.data(), {correlations.data(), firstLags.data()});
}

std::span<float> Autocorr::GetCorrelation(int frame) noexcept UTIL_NONBLOCKING
{
    const auto stride = static_cast<std::size_t>(Kernels::GetCorrelationStride(plan.maxLag));
    return std::span(correlations).subspan(stride * static_cast<std::size_t>(frame), stride);
}

} // namespace DSP
