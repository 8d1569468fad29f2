// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/Decimator.h"

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace AutoRepair {

namespace {

// Of the Kaiser window over the filter: with it, 63 coefficients reach 95 dB over the 0.1 R that
// lie between what stays and what goes.
constexpr double KaiserBeta = 9.6;

// Modified Bessel function of the first kind, order 0, by its series.
double BesselI0(double x)
{
    double sum = 1.0;
    double term = 1.0;
    for (int k = 1; term > 1e-17 * sum; ++k) {
        term *= (x / 2 / k) * (x / 2 / k);
        sum += term;
    }
    return sum;
}

// Appends every second sample of `input`, from number `first` on.
void AppendEverySecond(std::span<const float> input, std::size_t first, std::vector<float>& target)
{
    const std::size_t former = target.size();
    const std::size_t count = (input.size() + 1 - first) / 2;
    target.resize(former + count);
    for (std::size_t i = 0; i < count; ++i) {
        target[former + i] = input[first + 2 * i];
    }
}

} // namespace

HalfBandDecimator::HalfBandDecimator()
    : odd(Pairs)
{
    std::array<double, Pairs> exact{};
    double sum = 0;
    for (std::size_t i = 0; i < Pairs; ++i) {
        const double distance = 2.0 * static_cast<double>(i) + 1.0;
        const double place = distance / (2.0 * Pairs);
        const double window = BesselI0(KaiserBeta * std::sqrt(1.0 - place * place));
        exact.at(i) = (i % 2 == 0 ? window : -window) / distance;
        sum += exact.at(i);
    }
    // Middle and both sides add up to 1; one side is a quarter.
    std::transform(exact.begin(), exact.end(), coefficients.begin(), [&](double value) {
        return static_cast<float>(value / (4.0 * sum));
    });
}

void HalfBandDecimator::Process(std::span<const float> input, std::vector<float>& output)
{
    AppendEverySecond(input, isOddNext ? 1 : 0, even);
    AppendEverySecond(input, isOddNext ? 0 : 1, odd);
    isOddNext = isOddNext != (input.size() % 2 == 1);
    const std::size_t reach = 2 * Pairs - 1; // of odd inputs behind the first of an output
    if (odd.size() <= reach) {
        return;
    }
    const std::size_t count = std::min(even.size(), odd.size() - reach);
    const std::size_t former = output.size();
    output.resize(former + count);
    DSP::Kernels::GetKernels().halfBand.decimate(
        coefficients.data(), Pairs, even.data(), odd.data(), output.data() + former, count);
    even.erase(even.begin(), even.begin() + static_cast<std::ptrdiff_t>(count));
    odd.erase(odd.begin(), odd.begin() + static_cast<std::ptrdiff_t>(count));
}

void Decimator::Process(std::span<const float> input, std::vector<float>& output)
{
    if (chain.empty()) {
        output.insert(output.end(), input.begin(), input.end());
        return;
    }
    for (std::size_t i = 0; i < chain.size(); ++i) {
        const bool isLast = i + 1 == chain.size();
        std::vector<float>& target = isLast ? output : between[i];
        if (!isLast) {
            target.clear();
        }
        chain[i].Process(i == 0 ? input : std::span<const float>(between[i - 1]), target);
    }
}

} // namespace AutoRepair
