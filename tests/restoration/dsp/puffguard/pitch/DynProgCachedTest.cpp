// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/DynProgCached.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace {

using DP::DynProgCached;
using Candidates = DynProgCached::Candidates;

double Step(const DP::Candidate& from, const DP::Candidate& to)
{
    const double jump = std::fabs(static_cast<double>(from.value) - static_cast<double>(to.value));
    const double bent = jump > 9.6 ? (jump - 9.6) * 0.25 + 9.6 : jump;
    return bent + static_cast<double>(to.cost);
}

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

/// Same method without the remembered path: walks the whole window back at each run.
class PlainTwin {
public:
    DynProgCached::Result Push(const Candidates& candidates, std::size_t window)
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
        auto at = static_cast<std::size_t>(std::min_element(totals.begin(), totals.end()) -
                                           totals.begin());
        double inside = 0;
        std::size_t run = runs.size() - 1;
        for (std::size_t step = 1; step < window && run > 0; ++step, --run) {
            const std::size_t before = predecessors[run][at];
            inside += Step(runs[run - 1][before], runs[run][at]);
            at = before;
        }
        return {runs[run][at], inside};
    }

private:
    std::vector<Candidates> runs;
    std::vector<std::array<std::size_t, 4>> predecessors;
    std::array<double, 4> lastTotals{};
};

TEST(DynProgCached, KeepsToThePlainFormOverLongSequences)
{
    for (const std::size_t window : {2U, 4U, 65U}) {
        std::mt19937 random(99);
        DynProgCached path(static_cast<int>(window));
        PlainTwin twin;
        for (std::size_t run = 0; run < 1000; ++run) {
            const Candidates candidates = MakeCandidates(random);
            const auto found = path.Push(candidates);
            const auto expected = twin.Push(candidates, window);
            ASSERT_EQ(found.oldest.value, expected.oldest.value) << window << " " << run;
            // Float steps of up to 30: roundings of 2e-6 each.
            ASSERT_NEAR(found.pathCost, expected.pathCost, 2e-4) << window << " " << run;
        }
    }
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
