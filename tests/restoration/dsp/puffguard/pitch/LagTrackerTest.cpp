// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/LagTracker.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <numbers>
#include <vector>

namespace {

using DSP::Synapse::AnalysisSizes;
using DSP::Synapse::LagTracker;

constexpr double DecimatedRate = 12000;
constexpr std::size_t HopSamples = 8;

/// A ring full of the sum of two sawtooth-like tones, with these levels.
std::vector<float> MakeRing(double levelOf120, double levelOf190)
{
    std::vector<float> ring(12000);
    for (std::size_t i = 0; i < ring.size(); ++i) {
        const double turn = 2 * std::numbers::pi * static_cast<double>(i) / DecimatedRate;
        double value = 0;
        for (int k = 1; k <= 5; ++k) {
            value += levelOf120 * std::sin(k * 120 * turn) / k;
            value += levelOf190 * std::sin(k * 190 * turn + 1) / k;
        }
        ring[i] = static_cast<float>(value);
    }
    return ring;
}

/// A tracker without look ahead, so that each run's own choice shows.
LagTracker MakeTracker()
{
    LagTracker tracker(AnalysisSizes::ForRate(48000), 64);
    tracker.SetDynamicProgramming(false);
    return tracker;
}

/// Pitch in Hz after so many runs on the ring.
double FollowRing(LagTracker& tracker, const std::vector<float>& ring, std::size_t runs)
{
    double pitchHz = 0;
    for (std::size_t run = 0; run < runs; ++run) {
        pitchHz =
            DecimatedRate / static_cast<double>(tracker.Run(ring, 2000 + run * HopSamples).lag);
    }
    return pitchHz;
}

TEST(LagTracker, KeepsToWhatItHasFollowed)
{
    const std::vector<float> mixture = MakeRing(0.2, 0.2);
    LagTracker low = MakeTracker();
    LagTracker high = MakeTracker();
    EXPECT_NEAR(FollowRing(low, MakeRing(0.2, 0), 100), 120.0, 3.0);
    EXPECT_NEAR(FollowRing(high, MakeRing(0, 0.2), 100), 190.0, 5.0);
    EXPECT_NEAR(FollowRing(low, mixture, 8), 120.0, 12.0);
    EXPECT_NEAR(FollowRing(high, mixture, 8), 190.0, 19.0);
}

TEST(LagTracker, ResetForgetsWhatItHasFollowed)
{
    const std::vector<float> mixture = MakeRing(0.2, 0.2);
    for (const double level : {0.0, 0.2}) {
        LagTracker fresh = MakeTracker();
        LagTracker used = MakeTracker();
        FollowRing(used, MakeRing(0.2 - level, level), 100);
        used.Reset();
        for (std::size_t run = 1; run < 20; ++run) {
            const double expected = FollowRing(fresh, mixture, run);
            EXPECT_EQ(FollowRing(used, mixture, run), expected) << run;
        }
    }
}

} // namespace
