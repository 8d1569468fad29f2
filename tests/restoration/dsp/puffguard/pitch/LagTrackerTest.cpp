// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/LagTracker.h"

#include "restoration/dsp/puffguard/pitch/Autocorr.h"
#include "restoration/dsp/puffguard/pitch/FrameHistory.h"
#include "tests/frameworks/plugincore/dsp/kernels/Levels.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <numbers>

namespace {

using DSP::Synapse::AnalysisSizes;
using DSP::Synapse::LagTracker;

constexpr double DecimatedRate = 12000;
constexpr int HopSamples = 8;

/// A second of the sum of two sawtooth-like tones, with these levels.
std::vector<float> MakeMixture(double levelOf120, double levelOf190)
{
    std::vector<float> signal(12000);
    for (std::size_t i = 0; i < signal.size(); ++i) {
        const double turn = 2 * std::numbers::pi * static_cast<double>(i) / DecimatedRate;
        double value = 0;
        for (int k = 1; k <= 5; ++k) {
            value += levelOf120 * std::sin(k * 120 * turn) / k;
            value += levelOf190 * std::sin(k * 190 * turn + 1) / k;
        }
        signal[i] = static_cast<float>(value);
    }
    return signal;
}

/// A tracker without look ahead, so that each run's own choice shows.
LagTracker MakeTracker()
{
    LagTracker tracker(AnalysisSizes::ForRate(48000), 64);
    tracker.SetDynamicProgramming(false);
    return tracker;
}

/// Pitch in Hz after so many runs on the signal, the first in its midst.
double Follow(LagTracker& tracker, const std::vector<float>& signal, std::size_t runs)
{
    constexpr std::size_t Start = 250 * HopSamples;
    const AnalysisSizes sizes = AnalysisSizes::ForRate(48000);
    DSP::Autocorr autocorr(sizes.minLag, sizes.maxLag);
    DSP::Synapse::FrameHistory history(autocorr.GetFrameLength(), HopSamples);
    double pitchHz = 0;
    for (std::size_t i = 0; i < Start + runs * HopSamples; ++i) {
        history.Append(signal[i]);
        if (history.GetDueCount() == 0) {
            continue;
        }
        if (i >= Start) {
            for (int part = 0; part < DSP::Autocorr::Parts; ++part) {
                autocorr.ComputePart(part, history.GetFrames(), 1);
            }
            const auto estimate = tracker.Run(autocorr.GetCorrelation(0), autocorr.GetFirstLag(0));
            pitchHz = DecimatedRate / static_cast<double>(estimate.lag);
        }
        history.DropFrames(1);
    }
    return pitchHz;
}

TEST(LagTracker, KeepsToWhatItHasFollowed)
{
    const std::vector<float> mixture = MakeMixture(0.2, 0.2);
    LagTracker low = MakeTracker();
    LagTracker high = MakeTracker();
    EXPECT_NEAR(Follow(low, MakeMixture(0.2, 0), 100), 120.0, 3.0);
    EXPECT_NEAR(Follow(high, MakeMixture(0, 0.2), 100), 190.0, 5.0);
    EXPECT_NEAR(Follow(low, mixture, 8), 120.0, 12.0);
    EXPECT_NEAR(Follow(high, mixture, 8), 190.0, 19.0);
}

} // namespace
