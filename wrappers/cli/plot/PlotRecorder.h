// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/plot/FoldingList.h"
#include "wrappers/cli/plot/Spectrogram.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace Cli {

/// Least and greatest sample of a span of time, before and after the repair; full scale 1.0.
struct WaveColumn {
    float leastBefore = 0;
    float greatestBefore = 0;
    float leastAfter = 0;
    float greatestAfter = 0;

    void Fold(const WaveColumn& other);
};

/// Gathers what a picture of a recording shows while the recording passes by, in bounded memory.
/// Channels are averaged.
class PlotRecorder {
public:
    PlotRecorder(int sampleRate, int channels);

    /// Takes interleaved samples, both of the same length.
    void Add(std::span<const double> before, std::span<const double> after);

    /// Ends the recording.
    void Finish();

    const Spectrogram& GetBefore() const { return before; }
    const Spectrogram& GetAfter() const { return after; }
    const std::vector<WaveColumn>& GetWave() const { return wave.GetEntries(); }

    /// Seconds that an entry of GetWave() spans; entry n begins n times this behind the first
    /// sample.
    double GetWaveSeconds() const;

    double GetDuration() const; ///< seconds

private:
    void AddToWave(float sampleBefore, float sampleAfter);

    double sampleRate;
    size_t channels;
    size_t framesDone = 0;
    Spectrogram before;
    Spectrogram after;
    size_t waveStep; // frames of a column before any folding
    size_t waveCount = 0;
    WaveColumn waveColumn;
    FoldingList<WaveColumn> wave;
};

} // namespace Cli
