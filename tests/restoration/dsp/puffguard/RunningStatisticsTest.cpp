// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/RunningExp.h"
#include "restoration/dsp/puffguard/RunningHann.h"
#include "restoration/dsp/puffguard/RunningMax.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <deque>
#include <numbers>

namespace {

using Support::MakeNoise;

/// The weighted mean as defined, in double: weights 1 - cos(2 pi (i + 1/2) / N) over the last N.
double WeightedMean(const std::deque<double>& window)
{
    const auto count = static_cast<double>(window.size());
    double sum = 0;
    for (std::size_t i = 0; i < window.size(); ++i) {
        const double place = static_cast<double>(i) + 0.5;
        sum += window[i] * (1 - std::cos(2 * std::numbers::pi * place / count));
    }
    return sum / count;
}

TEST(RunningHann, IsTheWeightedMeanOfTheLastValues)
{
    for (const uint32_t halfLength : {0U, 1U, 2U, 7U, 64U}) {
        DSP::RunningHann<float> average;
        average.configure(halfLength, 1.0F);
        std::deque<double> window(2 * halfLength + 1, 1.0);
        // Long enough for many windows: what rounding leaves behind must not pile up.
        for (const float value : MakeNoise(5000, halfLength)) {
            window.pop_front();
            window.push_back(double{value});
            const float result = average.process(value) * average.GetScale();
            // A window of one value passes it.
            const double wanted = halfLength == 0 ? double{value} : WeightedMean(window);
            ASSERT_NEAR(result, wanted, 2e-5) << halfLength;
            ASSERT_NEAR(average.GetCurrent(), result, 1e-5) << halfLength;
        }
    }
}

TEST(RunningMax, IsTheLargestOfTheLastValues)
{
    DSP::RunningMaxs<float> maxima;
    for (const uint32_t length : {0U, 1U, 2U, 3U, 5U, 8U, 172U}) {
        maxima.configure(1, length, -1000.0F);
        maxima[0].process(3.0F); // forgotten by the reset
        maxima.reset();
        DSP::RunningMax<float>& maximum = maxima[0];
        std::deque<float> window(std::max(length, 1U), -1000.0F);
        for (const float value : MakeNoise(1000, length)) {
            window.pop_front();
            window.push_back(-value);
            ASSERT_EQ(maximum.process(-value), *std::max_element(window.begin(), window.end()))
                << length;
        }
    }
}

TEST(RunningExp, ReachesOneMinusOneOverEInItsTime)
{
    // 100 steps a second for 0.25 s: 25 steps, after which 1 - (1 - c)^25 = 1 - exp(-1).
    DSP::RunningExp<float> smoother;
    smoother.configure(0.25, 100.0, 0.0F);
    float value = 0;
    for (int i = 0; i < 25; ++i) {
        value = smoother.process(1.0F);
    }
    EXPECT_NEAR(value, 1 - std::exp(-1.0), 1e-5);
    smoother.reset();
    EXPECT_NEAR(smoother.process(1.0F), 1 - std::exp(-1.0 / 25), 1e-6);
}

TEST(RunningExp2, RisesAndFallsEachInItsTimeAndAtOnceWithout)
{
    DSP::RunningExp2<float> smoother;
    smoother.configure(10.0, 0.1, 100.0, 1.0F);
    EXPECT_NEAR(smoother.process(2.0F), 2 - std::exp(-1.0 / 1000), 1e-6);
    smoother.reset();
    EXPECT_NEAR(smoother.process(0.0F), std::exp(-1.0 / 10), 1e-6);

    smoother.configure(0.0, -1.0, 100.0, 1.0F);
    EXPECT_EQ(smoother.process(5.0F), 5.0F);
    EXPECT_EQ(smoother.process(0.25F), 0.25F);
    EXPECT_EQ(smoother.process(0.0F), 0.0F);
    EXPECT_EQ(smoother.process(2e-30F), 2e-30F); // smaller states are nothing
    EXPECT_EQ(smoother.process(0.5e-30F), 0.0F);
}

TEST(RunningExps2, AllBinsAtOnceAreThoseOfOneByOne)
{
    constexpr std::size_t Count = 37;
    DSP::RunningExps2<float> together;
    DSP::RunningExps2<float> single;
    together.configure(Count, 0.05, 0.02, 100.0, 0.5F);
    single.configure(Count, 0.05, 0.02, 100.0, 0.5F);
    for (unsigned step = 0; step < 20; ++step) {
        const std::vector<float> values = MakeNoise(Count, step);
        const float* const states = together.process(values.data());
        for (std::size_t bin = 0; bin < Count; ++bin) {
            ASSERT_EQ(states[bin], single.process(bin, values[bin]));
        }
    }
    single.SetState(3, 0.125F);
    EXPECT_EQ(single.process(3, 0.125F), 0.125F);
    single.reset();
    EXPECT_EQ(single.process(3, 0.5F), 0.5F);
}

} // namespace
