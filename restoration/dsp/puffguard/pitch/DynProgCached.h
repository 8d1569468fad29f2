// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Realtime.h"

#include <array>
#include <cstddef>
#include <vector>

/// Dynamic programming.
namespace DP {

/// One candidate of a run.
struct Candidate {
    float value = 0;   ///< place on the axis along which jumps cost, here 32 * ln(pitch in Hz)
    float cost = 0;    ///< 0 to 1, what it costs to choose the candidate at all
    float clarity = 0; ///< 0 to 1, carried along
};

/// Smoothest way through the candidates of the last runs.
///
/// The step from a candidate to one of the next run costs their distance in value, of which all
/// beyond 9.6 counts a quarter, plus the cost of the candidate arrived at. The cheapest path over
/// all runs since Reset() decides; what is asked is the candidate that it passes through at the
/// oldest run still kept, so that the answer is `windowRuns - 1` runs late.
///
/// Method: H. Ney, "Dynamic programming algorithm for optimal estimation of speech parameter
/// contours", IEEE Trans. Systems, Man and Cybernetics 13(3), 1983.
///
/// Cached: a new path mostly joins the one before after a few steps back, and the walk ends there.
class DynProgCached {
public:
    static constexpr int CandidateCount = 4;
    using Candidates = std::array<Candidate, CandidateCount>;

    /// The oldest kept point of the cheapest path.
    struct Result {
        Candidate oldest;
        double pathCost = 0; ///< sum of the step costs inside the window
    };

    /// Keeps `windowRuns` runs, at least 2. [setup]
    explicit DynProgCached(int windowRuns);

    /// Forgets all runs. [process]
    void Reset() noexcept UTIL_NONBLOCKING;

    /// Takes the candidates of the next run. Of equal paths that of the lowest index wins.
    /// [process]
    Result Push(const Candidates& candidates) noexcept UTIL_NONBLOCKING;

private:
    struct Run {
        Candidates candidates;
        std::array<double, CandidateCount> totals{};    // lowest path cost since the start
        std::array<int, CandidateCount> predecessors{}; // index in the run before
    };

    static void Extend(const Run& previous, Run& next) noexcept UTIL_NONBLOCKING;
    void TracePath(std::size_t newest, int best) noexcept UTIL_NONBLOCKING;
    std::size_t Before(std::size_t slot) const noexcept UTIL_NONBLOCKING
    {
        return slot == 0 ? runs.size() - 1 : slot - 1;
    }

    std::vector<Run> runs; // ring
    std::vector<int> path; // chosen candidate of each slot of the ring
    std::size_t nextSlot = 0;
    std::size_t count = 0; // runs kept
};

} // namespace DP
