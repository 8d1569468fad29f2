// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/VoicingGate.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using DSP::Synapse::LagEstimate;
using DSP::Synapse::VoicingGate;

constexpr int Delay = 64;
constexpr int StartUp = 193; // 2 * 64 + 1 runs of the smoother's window and 64 of the path's

TEST(VoicingGate, AnswersWhatWasPushed64RunsBeforeOnceItsWindowsAreFull)
{
    VoicingGate gate(Delay);
    for (int run = 0; run < 400; ++run) {
        const auto lag = static_cast<float>(run);
        const LagEstimate estimate = gate.Push(lag, lag * 0.001F, 0.1F);
        const bool isFull = run >= StartUp;
        ASSERT_EQ(estimate.voiced, isFull) << run;
        ASSERT_EQ(estimate.lag, isFull ? lag - Delay : 0.0F);
        ASSERT_EQ(estimate.confidence, isFull ? (lag - Delay) * 0.001F : 0.0F);
    }
}

TEST(VoicingGate, ALagOfZeroIsUnvoiced)
{
    VoicingGate gate(Delay);
    for (int run = 0; run <= StartUp; ++run) {
        gate.Push(0, 0.8F, 0.1F);
    }
    EXPECT_FALSE(gate.Push(0, 0.8F, 0.1F).voiced);
}

/// Voiced or not, by weighting the costs with the window itself instead of by recursion.
bool IsVoiced(const std::vector<double>& costs)
{
    constexpr int Length = 2 * Delay + 1;
    const auto runs = static_cast<int>(costs.size());
    double lowest = 1e30;
    for (int back = 0; back < 33; ++back) {
        double sum = 0;
        for (int i = 0; i < Length; ++i) {
            const double weight = 1 - std::cos(2 * std::numbers::pi * (i + 0.5) / Length);
            const int at = runs - 1 - back - i;
            sum += weight * (at >= 0 ? costs[static_cast<std::size_t>(at)] : 1.0);
        }
        lowest = std::min(lowest, sum / Length);
    }
    return lowest < 0.9;
}

TEST(VoicingGate, GoesByTheLowestOfTheSmoothedCosts)
{
    VoicingGate gate(Delay);
    std::vector<double> costs;
    int changes = 0;
    bool former = false;
    for (int run = 0; run < 1500; ++run) {
        // Stretches of 0.5 and 1.3, of 20 to 170 runs: some too short to count.
        const bool cheap = std::sin(run * run * 2e-5) > 0;
        costs.push_back(cheap ? 0.5 : 1.3);
        const LagEstimate estimate = gate.Push(100, 0.8F, static_cast<float>(costs.back()));
        if (run >= StartUp) {
            ASSERT_EQ(estimate.voiced, IsVoiced(costs)) << run;
            changes += estimate.voiced != former ? 1 : 0;
            former = estimate.voiced;
        }
    }
    EXPECT_GT(changes, 6); // the costs have tried both answers
}

} // namespace
