// SPDX-License-Identifier: ISC
#include "restoration/dsp/autorepair/Candidates.h"

#include "restoration/dsp/autorepair/FrameGrid.h"

#include <algorithm>
#include <numeric>

namespace AutoRepair {

namespace {

// Frames from one with a score above 0 to the next that belong to the same burst: 30 ms.
constexpr std::ptrdiff_t Join = 6;
// Frames above 0 of a burst: one alone is chance.
constexpr std::ptrdiff_t LeastFrames = 2;
// The greatest score of a burst is above this.
constexpr float LeastTop = 1.0F;
// Frames at the recording's ends where the long window sees the cut: no pop has its top there.
constexpr std::ptrdiff_t Edge = 7;
// The low end falls by so many dB between two bursts, which come in pairs, ...
constexpr float Dip = 12.0F;
// ... whose tops are 80 ms apart or more ...
constexpr std::ptrdiff_t LeastApart = 16;
// ... and neither of which is so close to the end of what they share.
constexpr std::ptrdiff_t CutMargin = 3;
// Span of the burst against the frames above 0 by their length, as measured on mixes: a window
// sees a burst early, and the longer it is the more of it counts as such.
constexpr double StartShift = -0.013; // s
constexpr double StartGrowth = 0.3;   // s a second
constexpr double LatestStart = 0.002; // s
constexpr double EndShift = 0.014;
constexpr double EndGrowth = -0.22;
constexpr double EarliestEnd = -0.012;
constexpr double LeastSpan = 0.005; // s

/// First and last frame.
struct Run {
    std::ptrdiff_t first;
    std::ptrdiff_t last;
};

/// The first of the greatest values from `first` to `last`.
std::ptrdiff_t FindTop(const std::vector<float>& values, std::ptrdiff_t first, std::ptrdiff_t last)
{
    const auto begin = values.begin() + first;
    return std::max_element(begin, values.begin() + last + 1) - values.begin();
}

std::vector<Run> FindRuns(const std::vector<float>& score)
{
    std::vector<Run> runs;
    const auto count = static_cast<std::ptrdiff_t>(score.size());
    for (std::ptrdiff_t begin = 0; begin < count; ++begin) {
        if (score[static_cast<std::size_t>(begin)] <= 0) {
            continue;
        }
        std::ptrdiff_t last = begin;
        std::ptrdiff_t frames = 0;
        for (std::ptrdiff_t i = begin; i < count && i - last <= Join; ++i) {
            if (score[static_cast<std::size_t>(i)] > 0) {
                last = i;
                ++frames;
            }
        }
        const std::ptrdiff_t top = FindTop(score, begin, last);
        const bool isInside = top >= Edge && top < count - Edge;
        if (frames >= LeastFrames && isInside && score[static_cast<std::size_t>(top)] > LeastTop) {
            runs.push_back({begin, last});
        }
        begin = last;
    }
    return runs;
}

/// Where two bursts of a run part; below 0: nowhere.
std::ptrdiff_t FindCut(const Run& run, const std::vector<float>& lowEnd)
{
    const auto at = [&](std::ptrdiff_t frame) { return lowEnd[static_cast<std::size_t>(frame)]; };
    const std::ptrdiff_t first = run.first + CutMargin;
    const std::ptrdiff_t end = run.last - CutMargin + 1;
    std::vector<std::ptrdiff_t> deepestFirst(
        static_cast<std::size_t>(std::max<std::ptrdiff_t>(end - first, 0)));
    std::iota(deepestFirst.begin(), deepestFirst.end(), first);
    std::stable_sort(deepestFirst.begin(),
                     deepestFirst.end(),
                     [&](std::ptrdiff_t a, std::ptrdiff_t b) { return at(a) < at(b); });
    for (const std::ptrdiff_t cut : deepestFirst) {
        const std::ptrdiff_t left = FindTop(lowEnd, run.first, cut - 1);
        const std::ptrdiff_t right = FindTop(lowEnd, cut, run.last);
        if (std::min(at(left), at(right)) - at(cut) < Dip) {
            break;
        }
        if (right - left >= LeastApart) {
            return cut;
        }
    }
    return -1;
}

void Split(const Run& run, const std::vector<float>& lowEnd, std::vector<Run>& bursts)
{
    const std::ptrdiff_t cut = FindCut(run, lowEnd);
    if (cut < 0) {
        bursts.push_back(run);
        return;
    }
    Split({run.first, cut - 1}, lowEnd, bursts);
    Split({cut + 1, run.last}, lowEnd, bursts);
}

Span CorrectedSpan(const Run& run, double length, double seconds)
{
    const double start = std::max(0.0,
                                  static_cast<double>(run.first) * HopSeconds +
                                      std::min(StartShift + StartGrowth * length, LatestStart));
    const double end = std::min(seconds,
                                static_cast<double>(run.last) * HopSeconds +
                                    std::max(EndShift + EndGrowth * length, EarliestEnd));
    return {start, std::max(end, start + LeastSpan)};
}

Candidate Describe(const Run& run, const ScoreTrack& track, double seconds)
{
    const std::ptrdiff_t top = FindTop(track.score, run.first, run.last);
    const auto begin = track.score.begin() + run.first;
    const auto end = track.score.begin() + run.last + 1;
    Candidate candidate;
    candidate.length = static_cast<double>(run.last - run.first) * HopSeconds;
    candidate.span = CorrectedSpan(run, candidate.length, seconds);
    candidate.score = std::accumulate(begin, end, 0.0) / static_cast<double>(end - begin);
    candidate.top = static_cast<double>(track.score[static_cast<std::size_t>(top)]);
    candidate.lowOverVoice = static_cast<double>(track.lowOverVoice[static_cast<std::size_t>(top)]);
    return candidate;
}

} // namespace

std::vector<Candidate> FindCandidates(const ScoreTrack& track, double seconds)
{
    std::vector<Run> bursts;
    for (const Run& run : FindRuns(track.score)) {
        Split(run, track.lowEnd, bursts);
    }
    std::vector<Candidate> candidates;
    candidates.reserve(bursts.size());
    for (const Run& burst : bursts) {
        candidates.push_back(Describe(burst, track, seconds));
    }
    return candidates;
}

} // namespace AutoRepair
