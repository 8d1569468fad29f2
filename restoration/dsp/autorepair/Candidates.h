// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/ScoreTrack.h"

#include <vector>

namespace AutoRepair {

/// A stretch of a recording in seconds.
struct Span {
    double start = 0;
    double end = 0;
};

/// A burst that may be a pop.
struct Candidate {
    Span span;               ///< of the burst, inside the recording
    double score = 0;        ///< mean of its frames
    double top = 0;          ///< greatest
    double length = 0;       ///< seconds from its first frame to the last
    double lowOverVoice = 0; ///< dB, at the top
};

/// Finds what scores above 0 in a recording that lasts `seconds`, in order of time. Bursts that
/// follow each other closely are told apart.
std::vector<Candidate> FindCandidates(const ScoreTrack& track, double seconds);

} // namespace AutoRepair
