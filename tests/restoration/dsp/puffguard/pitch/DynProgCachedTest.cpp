// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/DynProgCached.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <random>
#include <vector>

namespace {

using DP::DynProgCached;
using Candidates = DynProgCached::Candidates;

double Step(const DP::Candidate& from, const DP::Candidate& to)
{
    const double jump = std::fabs(static_cast<double>(from.value) - static_cast<double>(to.value));
    const double bent = jump > 9.6 ? (jump - 9.6) * 0.25 + 9.6 : jump;
    return bent + static_cast<double>(to.cost);
}

/// All paths through all runs, one after the other.
struct BruteForce {
    std::vector<Candidates> runs;

    DynProgCached::Result Solve(std::size_t window) const
    {
        const std::size_t pathCount = std::size_t{1} << (2 * runs.size());
        const std::size_t oldest = runs.size() > window ? runs.size() - window : 0;
        double lowest = 1e300;
        DynProgCached::Result result;
        for (std::size_t path = 0; path < pathCount; ++path) {
            const auto at = [&](std::size_t run) -> const DP::Candidate& {
                return runs[run][(path >> (2 * run)) & 3];
            };
            double total = static_cast<double>(at(0).cost);
            double inside = 0;
            for (std::size_t run = 1; run < runs.size(); ++run) {
                const double step = Step(at(run - 1), at(run));
                total += step;
                inside += run > oldest ? step : 0.0;
            }
            if (total < lowest) {
                lowest = total;
                result = {at(oldest), inside};
            }
        }
        return result;
    }
};

Candidates MakeCandidates(std::mt19937& random)
{
    std::uniform_real_distribution<float> value(100, 190);
    std::uniform_real_distribution<float> cost(0, 1);
    Candidates candidates;
    for (DP::Candidate& candidate : candidates) {
        candidate.value = value(random);
        candidate.cost = cost(random);
        candidate.clarity = 1 - candidate.cost;
    }
    return candidates;
}

TEST(DynProgCached, FindsThePathThatBruteForceFinds)
{
    for (unsigned seed = 0; seed < 6; ++seed) {
        std::mt19937 random(seed);
        DynProgCached path(4);
        BruteForce twin;
        for (int run = 0; run < 8; ++run) {
            twin.runs.push_back(MakeCandidates(random));
            const auto found = path.Push(twin.runs.back());
            const auto expected = twin.Solve(4);
            ASSERT_EQ(found.oldest.value, expected.oldest.value) << seed << " " << run;
            // Float steps of up to 30: roundings of 2e-6 each.
            ASSERT_NEAR(found.pathCost, expected.pathCost, 1e-4) << seed << " " << run;
        }
    }
}

/// Same method without the remembered path: walks the whole window back at each run.
class PlainTwin {
public:
    std::size_t Push(const Candidates& candidates, std::size_t window)
    {
        std::array<double, 4> totals{};
        std::array<std::size_t, 4> from{};
        for (std::size_t to = 0; to < 4; ++to) {
            totals[to] = runs.empty() ? static_cast<double>(candidates[to].cost) : 1e300;
            for (std::size_t i = 0; i < 4 && !runs.empty(); ++i) {
                const double total = lastTotals[i] + Step(runs.back()[i], candidates[to]);
                if (total < totals[to]) {
                    totals[to] = total;
                    from[to] = i;
                }
            }
        }
        runs.push_back(candidates);
        predecessors.push_back(from);
        lastTotals = totals;
        std::size_t at = 0;
        for (std::size_t i = 1; i < 4; ++i) {
            at = totals[i] < totals[at] ? i : at;
        }
        for (std::size_t step = 1; step < window && step < runs.size(); ++step) {
            at = predecessors[runs.size() - step][at];
        }
        return at;
    }

private:
    std::vector<Candidates> runs;
    std::vector<std::array<std::size_t, 4>> predecessors;
    std::array<double, 4> lastTotals{};
};

TEST(DynProgCached, KeepsToThePlainFormOverLongSequences)
{
    constexpr std::size_t Window = 65;
    std::mt19937 random(99);
    DynProgCached path(Window);
    PlainTwin twin;
    std::vector<Candidates> all;
    for (std::size_t run = 0; run < 1000; ++run) {
        all.push_back(MakeCandidates(random));
        const auto found = path.Push(all.back());
        const std::size_t index = twin.Push(all.back(), Window);
        const std::size_t oldest = run < Window ? 0 : run - (Window - 1);
        ASSERT_EQ(found.oldest.value, all[oldest][index].value) << run;
    }
}

TEST(DynProgCached, IronsOutAnOctaveJump)
{
    // Staying at 150 costs 0.3 once; going up an octave (22.18) and back costs twice
    // (22.18 - 9.6) / 4 + 9.6 = 12.745 and saves 0.2.
    const DP::Candidate low{150, 0.1F, 0.9F};
    const DP::Candidate lowDoubtful{150, 0.3F, 0.7F};
    const DP::Candidate octave{172.18F, 0.1F, 0.9F};
    DynProgCached path(3);
    path.Push({low, low, low, low});
    path.Push({octave, octave, octave, lowDoubtful});
    path.Push({low, low, low, low});
    const auto result = path.Push({low, low, low, low}); // the oldest run is now the doubtful one
    EXPECT_EQ(result.oldest.value, 150.0F);
    EXPECT_NEAR(result.pathCost, 0.2, 1e-6); // two steps onto `low`
}

TEST(DynProgCached, ChangesItsMindAboutALongStretch)
{
    // Two tracks side by side, 0.01 a step apart, for 50 runs: 0.5 in all, far less than the 24.7
    // that a change from one to the other costs.
    const DP::Candidate low{100, 0.50F, 0.50F};
    const DP::Candidate high{170, 0.51F, 0.49F};
    DynProgCached path(60);
    for (int run = 0; run < 50; ++run) {
        EXPECT_EQ(path.Push({low, high, low, high}).oldest.value, low.value);
    }
    // Then only the dearer one goes on, and with it the path back to the first run.
    EXPECT_EQ(path.Push({high, high, high, high}).oldest.value, high.value);
}

TEST(DynProgCached, ChargesLongJumpsAQuarterBeyondTheKnee)
{
    const DP::Candidate low{150, 0.1F, 0.9F};
    const DP::Candidate octave{172.18F, 0.1F, 0.9F};
    DynProgCached path(2);
    path.Push({low, low, low, low});
    EXPECT_NEAR(path.Push({octave, octave, octave, octave}).pathCost, 12.745 + 0.1, 1e-4);
}

TEST(DynProgCached, TakesTheLowestIndexOfEqualPaths)
{
    DynProgCached path(2);
    Candidates equal;
    for (std::size_t i = 0; i < equal.size(); ++i) {
        equal[i] = {150, 0.5F, static_cast<float>(i)};
    }
    path.Push(equal);
    EXPECT_EQ(path.Push(equal).oldest.clarity, 0.0F);
}

} // namespace
