// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/LowSpectrum.h"

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "restoration/dsp/autorepair/Decibel.h"
#include "restoration/dsp/autorepair/Hann.h"
#include "restoration/dsp/autorepair/Sums.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>
#include <span>

namespace AutoRepair {

namespace {

constexpr Band LowValley{20, 110};   // under a bass voice's first harmonics
constexpr Band UpperValley{50, 210}; // between them
constexpr double LowValleyPercent = 35;
constexpr double UpperValleyPercent = 30;
constexpr Band Line{60, 250};                  // where the fundamental of a voice lies
constexpr Band Voiced{40, HighestLowSpectrum}; // harmonics that make a lag show
constexpr double LeastLag = 0.004;             // seconds: 250 Hz
constexpr double LagStep = 0.00025;
constexpr std::size_t LagCount = 53; // up to 17 ms: 59 Hz
constexpr std::size_t RowLength = DSP::Kernels::RoundUpColumns(LagCount);
constexpr double PeriodicityScale = 30;     // brings it to the size of the levels
constexpr double GreatestCorrelation = 1.2; // beyond 1 by dividing the window's fall out
constexpr double LeastSum = 1e-14;          // keeps silence from dividing by 0
constexpr int WindowPoints = 280;           // in which the window's own correlation is known

// The window's autocorrelation at so many of WindowPoints, 1 at 0.
std::vector<double> CorrelateWindow()
{
    const std::vector<double> window = MakeHann(WindowPoints);
    std::vector<double> correlation(window.size());
    for (std::size_t shift = 0; shift < window.size(); ++shift) {
        correlation[shift] = std::inner_product(
            window.begin() + static_cast<std::ptrdiff_t>(shift), window.end(), window.begin(), 0.0);
    }
    const double whole = correlation[0];
    std::transform(correlation.begin(), correlation.end(), correlation.begin(), [&](double value) {
        return value / whole;
    });
    return correlation;
}

double WindowFall(const std::vector<double>& correlation, double lag)
{
    const double place = lag / (LowSpectrumSeconds / WindowPoints);
    const auto index = static_cast<std::size_t>(place);
    const double part = place - std::floor(place);
    return correlation[index] + (correlation[index + 1] - correlation[index]) * part;
}

PercentilePlace PlaceIn(const BinRange& range, double percent)
{
    return {static_cast<std::size_t>(range.GetCount()), percent};
}

// Floats that the search for a rank among so many needs.
std::size_t RoomFor(int count)
{
    constexpr std::size_t Group = DSP::Kernels::RankGroup;
    return (static_cast<std::size_t>(count) + Group - 1) / Group * Group;
}

float LevelOf(float power)
{
    return static_cast<float>(ToDecibel(static_cast<double>(power)));
}

} // namespace

LowSpectrum::LowSpectrum(const BinScale& scale)
    : lowValley(scale.UpTo(LowValley.low, LowValley.high))
    , upperValley(scale.UpTo(UpperValley.low, UpperValley.high))
    , line(scale.UpTo(Line.low, Line.high))
    , voiced(scale.UpTo(Voiced.low, Voiced.high))
    , lowPlace(PlaceIn(lowValley, LowValleyPercent))
    , upperPlace(PlaceIn(upperValley, UpperValleyPercent))
    , binCount(voiced.end)
    , cosines(static_cast<std::size_t>(voiced.GetCount()) * RowLength)
    , correlation(RowLength)
    , valley(RoomFor(std::max(lowValley.GetCount(), upperValley.GetCount())))
{
    const std::vector<double> fall = CorrelateWindow();
    float* row = cosines.data();
    for (int bin = voiced.first; bin < voiced.end; ++bin, row += RowLength) {
        for (std::size_t i = 0; i < LagCount; ++i) {
            const double lag = LeastLag + static_cast<double>(i) * LagStep;
            const double turn = 2.0 * std::numbers::pi * scale.GetFrequency(bin) * lag;
            row[i] = static_cast<float>(std::cos(turn) / WindowFall(fall, lag));
        }
    }
}

RankedPair LowSpectrum::MeasureValley(std::span<const float> power,
                                      const BinRange& range,
                                      const PercentilePlace& place)
{
    const std::span<const float> bins = range.Of(power);
    std::copy(bins.begin(), bins.end(), valley.begin());
    const DSP::Kernels::RankedValues values =
        DSP::Kernels::GetKernels().rank.select(valley.data(), bins.size(), place.lower);
    return {LevelOf(values.lower), LevelOf(values.upper), static_cast<float>(place.part)};
}

float LowSpectrum::MeasurePeriodicity(std::span<const float> power)
{
    std::fill(correlation.begin(), correlation.end(), 0.0F);
    const std::span<const float> bins = voiced.Of(power);
    DSP::Kernels::GetKernels().matrix.multiplyAdd(
        {1, bins.size(), RowLength, bins.data(), bins.size(), cosines.data(), RowLength},
        correlation.data(),
        RowLength);
    const auto best =
        static_cast<double>(*std::max_element(correlation.begin(), correlation.begin() + LagCount));
    return static_cast<float>(PeriodicityScale * std::clamp(best / (SumOf<double>(bins) + LeastSum),
                                                            0.0,
                                                            GreatestCorrelation));
}

void LowSpectrum::Measure(std::span<const float> power, FrameLevels& levels)
{
    levels.lowValley = MeasureValley(power, lowValley, lowPlace);
    levels.upperValley = MeasureValley(power, upperValley, upperPlace);
    const std::span<const float> bins = line.Of(power);
    levels.line = LevelOf(*std::max_element(bins.begin(), bins.end()));
    levels.lineMean = LevelOf(SumOf<float>(bins) / static_cast<float>(bins.size()));
    levels.periodicity = MeasurePeriodicity(power);
}

} // namespace AutoRepair
