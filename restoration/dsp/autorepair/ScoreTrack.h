// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/RecordingScale.h"

#include <vector>

namespace AutoRepair {

/// By frame of a recording: whether a pop is there, and what else decides about it.
struct ScoreTrack {
    std::vector<float> score;        ///< above 0 for a pop
    std::vector<float> lowEnd;       ///< dB, 15 to 260 Hz
    std::vector<float> lowOverVoice; ///< dB, 15 to 170 Hz over 260 to 3000 Hz, above the median
};

/// Scores all frames: two linear scores, one for each kind of pop, their soft maximum, and the mean
/// of three frames of that.
ScoreTrack ComputeScores(const LevelStore& store, const RecordingScale& scale);

} // namespace AutoRepair
