// SPDX-License-Identifier: ISC
#include "wrappers/cli/plot/PlotRecorder.h"

#include <cmath>

namespace Cli {

namespace {

constexpr double WaveColumnSeconds = 0.001;
constexpr size_t GreatestWaveColumnCount = 2800;

float Average(const double* samples, size_t count)
{
    double sum = 0;
    for (size_t i = 0; i < count; ++i) {
        sum += samples[i];
    }
    return static_cast<float>(sum / static_cast<double>(count));
}

} // namespace

void WaveColumn::Fold(const WaveColumn& other)
{
    leastBefore = std::min(leastBefore, other.leastBefore);
    greatestBefore = std::max(greatestBefore, other.greatestBefore);
    leastAfter = std::min(leastAfter, other.leastAfter);
    greatestAfter = std::max(greatestAfter, other.greatestAfter);
}

PlotRecorder::PlotRecorder(int newSampleRate, int newChannels)
    : sampleRate(newSampleRate)
    , channels(static_cast<size_t>(newChannels))
    , before(newSampleRate)
    , after(newSampleRate)
    , waveStep(static_cast<size_t>(std::lround(newSampleRate * WaveColumnSeconds)))
    , wave(GreatestWaveColumnCount)
{
}

double PlotRecorder::GetWaveSeconds() const
{
    return static_cast<double>(waveStep * wave.GetSpan()) / sampleRate;
}

double PlotRecorder::GetDuration() const
{
    return static_cast<double>(framesDone) / sampleRate;
}

void PlotRecorder::AddToWave(float sampleBefore, float sampleAfter)
{
    const WaveColumn sample{sampleBefore, sampleBefore, sampleAfter, sampleAfter};
    if (waveCount == 0) {
        waveColumn = sample;
    } else {
        waveColumn.Fold(sample);
    }
    waveCount = (waveCount + 1) % waveStep;
    if (waveCount == 0) {
        wave.Add(waveColumn);
    }
}

void PlotRecorder::Add(std::span<const double> samplesBefore, std::span<const double> samplesAfter)
{
    for (size_t i = 0; i + channels <= samplesBefore.size(); i += channels) {
        const float sampleBefore = Average(&samplesBefore[i], channels);
        const float sampleAfter = Average(&samplesAfter[i], channels);
        before.Add(sampleBefore);
        after.Add(sampleAfter);
        AddToWave(sampleBefore, sampleAfter);
        ++framesDone;
    }
}

void PlotRecorder::Finish()
{
    before.Finish();
    after.Finish();
    if (waveCount > 0) {
        wave.Add(waveColumn);
    }
}

} // namespace Cli
