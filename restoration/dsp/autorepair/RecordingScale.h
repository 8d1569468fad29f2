// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/FrameLevels.h"

namespace AutoRepair {

/// Speech this quiet, in dB, is taken for silence.
inline constexpr double Silence = -90;

/// What a recording's levels are measured by: its own. All in dB; medians are over the frames in
/// speech, those within 25 dB of the speech level.
struct RecordingScale {
    double speechLevel = 0; ///< 95th percentile of 170 to 3000 Hz
    double low = 0;         ///< median of 15 to 60 Hz
    double lowShort = 0;    ///< median of 60 to 140 Hz under the short window
    double lowValley = 0;   ///< medians
    double upperValley = 0;
    double lowOverVoice = 0;  ///< median of 15 to 170 Hz over 260 to 3000 Hz
    double lowEnd = 0;        ///< median of 15 to 260 Hz
    double lowQuartile = 0;   ///< upper quartile of 15 to 60 Hz
    double upperQuartile = 0; ///< upper quartile of 110 to 170 Hz

    bool IsSilence() const { return speechLevel < Silence; }
};

/// A frame with nothing further down than counts against the speech level, and what follows of it.
struct LimitedLevels {
    LimitedLevels(const FrameLevels& levels, double speechLevel);

    std::array<double, LongBands.size()> bands{};
    std::array<double, ShortBands.size()> shortBands{};
    double lowValley;
    double upperValley;
    double tone; ///< how far one line stands out of the mean of 60 to 250 Hz
    double periodicity;

    double GetLowOverVoice() const; ///< 15 to 170 Hz over 260 to 3000 Hz
    double GetLowEnd() const;       ///< 15 to 260 Hz
};

/// Measures a recording of one frame or more.
RecordingScale MeasureScale(const LevelStore& store);

} // namespace AutoRepair
