// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/DynProgCached.h"

#include <algorithm>
#include <cmath>

namespace DP {

namespace {

// With 32 * ln(Hz) as value an octave is 22.18 wide, and this knee lies at 5.19 semitones.
constexpr float JumpKnee = 9.6F;
constexpr float SlopeBeyondKnee = 0.25F;

float StepCost(const Candidate& from, const Candidate& to) noexcept UTIL_NONBLOCKING
{
    float jump = std::fabs(from.value - to.value);
    jump = jump > JumpKnee ? (jump - JumpKnee) * SlopeBeyondKnee + JumpKnee : jump;
    return jump + to.cost;
}

} // namespace

DynProgCached::DynProgCached(int windowRuns)
    : runs(static_cast<std::size_t>(windowRuns))
    , path(static_cast<std::size_t>(windowRuns))
{
}

void DynProgCached::Reset() noexcept UTIL_NONBLOCKING
{
    nextSlot = 0;
    count = 0;
}

void DynProgCached::Extend(const Run& previous, Run& next) noexcept UTIL_NONBLOCKING
{
    for (std::size_t to = 0; to < CandidateCount; ++to) {
        int best = 0;
        double lowest = previous.totals[0] +
                        static_cast<double>(StepCost(previous.candidates[0], next.candidates[to]));
        for (std::size_t from = 1; from < CandidateCount; ++from) {
            const double total =
                previous.totals[from] +
                static_cast<double>(StepCost(previous.candidates[from], next.candidates[to]));
            const bool cheaper = total < lowest;
            lowest = cheaper ? total : lowest;
            best = cheaper ? static_cast<int>(from) : best;
        }
        next.totals[to] = lowest;
        next.predecessors[to] = best;
    }
}

/// Writes the cheapest path to `path`, newest run first. From the slot on where it meets the former
/// path both are the same, since each candidate has one predecessor only.
void DynProgCached::TracePath(std::size_t newest, int best) noexcept UTIL_NONBLOCKING
{
    std::size_t slot = newest;
    path[slot] = best;
    for (std::size_t step = 1; step < count; ++step) {
        const int predecessor = runs[slot].predecessors[static_cast<std::size_t>(path[slot])];
        slot = Before(slot);
        if (path[slot] == predecessor) {
            return;
        }
        path[slot] = predecessor;
    }
}

DynProgCached::Result DynProgCached::Push(const Candidates& candidates) noexcept UTIL_NONBLOCKING
{
    const std::size_t newest = nextSlot;
    Run& run = runs[newest];
    run.candidates = candidates;
    if (count == 0) {
        for (std::size_t i = 0; i < CandidateCount; ++i) {
            run.totals[i] = static_cast<double>(candidates[i].cost);
        }
        // No former path to meet: a value that no predecessor has.
        std::fill(path.begin(), path.end(), -1);
    } else {
        Extend(runs[Before(newest)], run);
    }
    nextSlot = newest + 1 == runs.size() ? 0 : newest + 1;
    count = std::min(count + 1, runs.size());

    const auto* const lowest = std::min_element(run.totals.begin(), run.totals.end());
    TracePath(newest, static_cast<int>(lowest - run.totals.begin()));
    const std::size_t oldest = count < runs.size() ? 0 : nextSlot;
    const auto chosen = static_cast<std::size_t>(path[oldest]);
    return {runs[oldest].candidates[chosen], *lowest - runs[oldest].totals[chosen]};
}

} // namespace DP
