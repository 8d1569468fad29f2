// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/Beat.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace AutoRepair {

namespace {

// Beats are looked for from the eighth notes of 160 a minute to the beats of 60 a minute.
constexpr int ShortestBeat = 180; // ms
constexpr int LongestBeat = 1000; // ms
// A bass drum that is heard less often than this, in seconds, has paused in between: a bar of four
// beats at 80 a minute.
constexpr double LongestInterval = 3.05;
// How far off the beat a pop may be, in seconds: what a drummer and the search for the loudest
// moment miss it by. Any time is so close to a beat by a chance of 0.13 at most.
constexpr double Tolerance = 0.012;
// Of intervals that are compared, so many at least, and this share of them on the beat: by chance,
// speech would have that once in some hundred thousand recordings.
constexpr std::size_t LeastIntervals = 9;
constexpr double LeastShare = 0.8;

bool IsOnBeat(double interval, double beat)
{
    const double beats = std::round(interval / beat);
    return beats >= 1 && std::abs(interval - beats * beat) <= Tolerance;
}

// The mean length of the beats that are kept to.
double MeanBeat(const std::vector<double>& intervals, double beat)
{
    double seconds = 0;
    double beats = 0;
    for (const double interval : intervals) {
        if (IsOnBeat(interval, beat)) {
            seconds += interval;
            beats += std::round(interval / beat);
        }
    }
    return seconds / beats;
}

} // namespace

std::optional<Beat> FindBeat(std::span<const double> times)
{
    std::vector<double> intervals;
    for (std::size_t i = 1; i < times.size(); ++i) {
        const double interval = times[i] - times[i - 1];
        if (interval <= LongestInterval) {
            intervals.push_back(interval);
        }
    }
    if (intervals.size() < LeastIntervals || 2 * intervals.size() < times.size()) {
        return std::nullopt;
    }
    Beat best;
    best.compared = intervals.size();
    for (int length = ShortestBeat; length <= LongestBeat; ++length) {
        const double beat = length / 1000.0;
        const auto count = static_cast<std::size_t>(
            std::count_if(intervals.begin(), intervals.end(), [beat](double interval) {
                return IsOnBeat(interval, beat);
            }));
        if (count >= best.onBeat) { // of equals the longest
            best.onBeat = count;
            best.seconds = beat;
        }
    }
    const double share = static_cast<double>(best.onBeat) / static_cast<double>(best.compared);
    if (share < LeastShare) {
        return std::nullopt;
    }
    best.seconds = MeanBeat(intervals, best.seconds);
    return best;
}

} // namespace AutoRepair
