// SPDX-License-Identifier: ISC
#include "wrappers/cli/plot/Spectrogram.h"

#include "wrappers/cli/plot/LowPass.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <numeric>

namespace Cli {

namespace {

constexpr double ReducedRateAtLeast = 4000.0; // Hz
constexpr double WindowSeconds = 0.045;
constexpr double HopSeconds = 0.005;
constexpr size_t GreatestColumnCount = 1600;

// Reduced samples on each side of the low-pass. What folds below 1 kHz lies above
// reducedRate - 1 kHz, at least 3 kHz, where this length is far down.
constexpr size_t FilterReach = 6;

// Hann window, scaled so that a sine of amplitude 1 gives magnitude 1 in its bin.
std::vector<float> MakeWindow(size_t length)
{
    std::vector<float> result(length);
    for (size_t i = 0; i < length; ++i) {
        const double phase =
            2.0 * std::numbers::pi * (static_cast<double>(i) + 0.5) / static_cast<double>(length);
        result[i] =
            static_cast<float>((0.5 - 0.5 * std::cos(phase)) * 4.0 / static_cast<double>(length));
    }
    return result;
}

// Transform length: at least twice the window, which draws the spectrum smoothly.
size_t TransformLength(size_t windowLength)
{
    size_t length = 64;
    while (length < 2 * windowLength) {
        length *= 2;
    }
    return length;
}

} // namespace

void SpectrumColumn::Fold(const SpectrumColumn& other)
{
    for (size_t i = 0; i < powers.size(); ++i) {
        powers[i] = std::max(powers[i], other.powers[i]);
    }
}

Spectrogram::Spectrogram(int sampleRate)
    : factor(static_cast<size_t>(std::max(1.0, sampleRate / ReducedRateAtLeast)))
    , reducedRate(static_cast<double>(sampleRate) / static_cast<double>(factor))
    , filter(MakeLowPass(factor, FilterReach))
    , recent(2 * filter.size())
    , toSkip(FilterReach)
    , window(MakeWindow(2 * static_cast<size_t>(std::lround(WindowSeconds * reducedRate / 2))))
    , frame(window.size())
    , hop(static_cast<size_t>(std::lround(HopSeconds * reducedRate)))
    , untilAnalysis(window.size() / 2)
    , fftInput(TransformLength(window.size()))
    , fftOutput(fftInput.size() / 2 + 1)
    , plan(kiss_fftr_alloc(static_cast<int>(fftInput.size()), 0, nullptr, nullptr))
    , binCount(static_cast<size_t>(std::ceil(SpectrogramLimitHz / GetBinHz())) + 1)
    , columns(GreatestColumnCount)
{
}

double Spectrogram::GetColumnSeconds() const
{
    return static_cast<double>(hop * columns.GetSpan()) / reducedRate;
}

double Spectrogram::GetStartSeconds() const
{
    return -0.5 * static_cast<double>(hop) / reducedRate;
}

double Spectrogram::GetBinHz() const
{
    return reducedRate / static_cast<double>(fftInput.size());
}

void Spectrogram::Add(float sample)
{
    recent[recentPosition] = recent[recentPosition + filter.size()] = sample;
    recentPosition = (recentPosition + 1) % filter.size();
    if (--untilReduced > 0) {
        return;
    }
    untilReduced = factor;
    const float sum =
        std::inner_product(filter.begin(), filter.end(), recent.data() + recentPosition, 0.0F);
    if (toSkip > 0) {
        --toSkip;
    } else {
        AddReduced(sum);
    }
}

void Spectrogram::AddReduced(float sample)
{
    frame[framePosition] = sample;
    framePosition = (framePosition + 1) % frame.size();
    if (--untilAnalysis == 0) {
        untilAnalysis = hop;
        Analyse();
    }
}

void Spectrogram::Analyse()
{
    for (size_t i = 0; i < frame.size(); ++i) {
        fftInput[i] = window[i] * frame[(framePosition + i) % frame.size()];
    }
    kiss_fftr(plan.get(), fftInput.data(), fftOutput.data());
    SpectrumColumn column;
    column.powers.resize(binCount);
    for (size_t i = 0; i < binCount; ++i) {
        column.powers[i] = fftOutput[i].r * fftOutput[i].r + fftOutput[i].i * fftOutput[i].i;
    }
    columns.Add(std::move(column));
}

void Spectrogram::Finish()
{
    const size_t missing = (FilterReach + window.size() / 2) * factor;
    for (size_t i = 0; i < missing; ++i) {
        Add(0.0F);
    }
}

} // namespace Cli
