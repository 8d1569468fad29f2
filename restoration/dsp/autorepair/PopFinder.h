// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/Candidates.h"
#include "restoration/dsp/autorepair/LevelAnalysis.h"

#include <span>
#include <vector>

namespace AutoRepair {

/// Seconds that a recording must last for its own levels to be a measure.
inline constexpr double LeastSeconds = 1.0;

/// What a recording holds.
struct Findings {
    RecordingScale scale;
    ScoreTrack track;
    std::vector<Candidate> candidates; ///< in order of time
};

/// Finds the pops of a recording that passes by once.
class PopFinder {
public:
    /// `newStore` is empty, for this recording alone, and outlives this.
    PopFinder(int newSampleRate, int channels, LevelStore& newStore)
        : sampleRate(newSampleRate)
        , store(newStore)
        , analysis(newSampleRate, channels, newStore)
    {
    }

    /// Takes the next samples, interleaved, full scale 1.0, all finite.
    void Push(std::span<const double> samples) { analysis.Push(samples); }

    /// Ends the recording. Silence and less than `LeastSeconds` hold no candidates.
    Findings Finish();

private:
    int sampleRate;
    LevelStore& store;
    LevelAnalysis analysis;
};

} // namespace AutoRepair
