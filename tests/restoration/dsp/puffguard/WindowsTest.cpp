// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/Windows.h"
#include "restoration/dsp/puffguard/Bessel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

constexpr double Pi = std::numbers::pi;

TEST(BesselI0, IsThePowerSeries)
{
    // I0(x) = sum of (x / 2)^2m / (m!)^2; at 15 the terms have died out long before the 200th.
    EXPECT_EQ(DSP::BesselI0(0.0), 1.0);
    for (const double x : {1e-6, 0.1, 1.0, Pi, 10.0, 14.0, 15.0}) {
        double term = 1;
        double sum = 1;
        for (int m = 1; m < 200; ++m) {
            term *= (x / 2) * (x / 2) / (static_cast<double>(m) * m);
            sum += term;
        }
        EXPECT_NEAR(DSP::BesselI0(x) / sum, 1.0, 1e-9) << x;
        EXPECT_EQ(DSP::BesselI0(-x), DSP::BesselI0(x));
    }
}

TEST(Windows, ShapesAreThoseOfTheFormulas)
{
    // Ratios to the middle are free of the scaling. In the middle of an even window x / W is
    // 1/2 - 1/2W; W = 8, i = 1: x = 1.5, turn 3 pi / 8; i = 3: turn 7 pi / 8.
    const DSP::WindowPair hann = DSP::MakeWindows(DSP::WindowHann, 8, 2);
    const double hannRatio =
        (0.5 - 0.5 * std::cos(3 * Pi / 8)) / (0.5 - 0.5 * std::cos(7 * Pi / 8));
    EXPECT_NEAR(hann.analysis[1] / hann.analysis[3], hannRatio, 1e-6);
    EXPECT_NEAR(hann.synthesis[6] / hann.synthesis[4], hannRatio, 1e-6);
    // The synthesis window is the plain one times hop / (W / 2) = 2 / 4.
    EXPECT_NEAR(hann.synthesis[1], (0.5 - 0.5 * std::cos(3 * Pi / 8)) * 0.5, 1e-7);

    const DSP::WindowPair blackman = DSP::MakeWindows(DSP::WindowBlackman, 8, 1);
    const double plain = 0.42 - 0.5 * std::cos(3 * Pi / 8) + 0.08 * std::cos(6 * Pi / 8);
    EXPECT_NEAR(blackman.synthesis[1], plain * 0.25, 1e-7);
    EXPECT_NEAR(blackman.analysis[2] / blackman.analysis[5], 1.0, 1e-6); // mirrored
}

TEST(Windows, FilterWindowIsFlatInAnalysisAndTakesTheHopFactorTwice)
{
    // W = 8, H = 2, i = 3: x = 3.5 is the centre (W - 1) / 2, where sinc is 1. The Kaiser kernel of
    // beta 14 is at place 3 of 7: I0(14 sqrt(1 - (1/7)^2)) / I0(14). Hann: turn 7 pi / 8.
    const DSP::WindowPair pair = DSP::MakeWindows(DSP::WindowFilter, 8, 2);
    const double kaiser = DSP::BesselI0(14 * std::sqrt(1 - 1.0 / 49)) / DSP::BesselI0(14);
    const double centre = (0.5 - 0.5 * std::cos(7 * Pi / 8)) * kaiser * 0.5 * 0.5;
    EXPECT_NEAR(pair.synthesis[3], centre, 1e-7);
    // i = 5: u = (5.5 - 3.5) * 4 pi / 8 = pi, a zero of the sinc.
    EXPECT_NEAR(pair.synthesis[5], 0.0, 1e-7);
    for (const float value : pair.analysis) {
        EXPECT_EQ(value, pair.analysis[0]);
    }
    // Any other negative kind means the same.
    EXPECT_EQ(DSP::MakeWindows(-7, 8, 2).synthesis, pair.synthesis);
}

TEST(Windows, KaiserBesselDerivedPairsAddUpInPower)
{
    // The property that these windows are made for: w[i]^2 + w[i + W/2]^2 is constant.
    for (const int shape : {0, 1, 4}) {
        const DSP::WindowPair pair = DSP::MakeWindows(shape, 32, 16);
        const auto power = [&](std::size_t i) {
            return static_cast<double>(pair.synthesis[i]) * static_cast<double>(pair.synthesis[i]);
        };
        for (std::size_t i = 0; i < 16; ++i) {
            EXPECT_NEAR(power(i) + power(i + 16), 1.0, 1e-6) << shape; // H / (W / 2) is 1 here
        }
        EXPECT_LT(pair.synthesis[0], pair.synthesis[15]);
    }
}

TEST(Windows, ProductIsScaledBeforeTheHopFactor)
{
    for (const int kind : std::initializer_list<int>{-1, -2, -3, 2}) {
        const DSP::WindowPair pair = DSP::MakeWindows(kind, 32, 4);
        double sum = 0;
        for (std::size_t i = 0; i < 32; ++i) {
            sum += static_cast<double>(pair.analysis[i]) * static_cast<double>(pair.synthesis[i]);
        }
        EXPECT_NEAR(sum, 4.0, 1e-5) << kind; // (W / 2) * H / (W / 2) = H
    }
}

} // namespace
