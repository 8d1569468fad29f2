// SPDX-License-Identifier: ISC
#include "wrappers/cli/plot/Spectrogram.h"

#include "wrappers/cli/plot/PlotAxis.h"
#include "wrappers/cli/plot/PlotRecorder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using Cli::Spectrogram;
using Cli::SpectrumColumn;

Spectrogram Analyse(int sampleRate, double seconds, double hz, double amplitude)
{
    Spectrogram spectrogram(sampleRate);
    const auto frames = static_cast<int>(seconds * sampleRate);
    for (int i = 0; i < frames; ++i) {
        spectrogram.Add(
            static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * hz * i / sampleRate)));
    }
    spectrogram.Finish();
    return spectrogram;
}

double GreatestDecibel(const SpectrumColumn& column)
{
    const auto greatest = std::max_element(column.powers.begin(), column.powers.end());
    return 10 * std::log10(static_cast<double>(*greatest) + 1e-20);
}

class SpectrogramAtRate : public testing::TestWithParam<int> {};

TEST_P(SpectrogramAtRate, ShowsASineWhereItIsAndNothingFromAbove)
{
    // A Hann window loses at most 1.4 dB between its own bins; this transform has twice as many
    // bins, which leaves 0.4 dB. The low-pass may add half a decibel.
    const Spectrogram s = Analyse(GetParam(), 1.0, 150.0, 0.1);
    const SpectrumColumn& middle = s.GetColumns()[s.GetColumns().size() / 2];
    EXPECT_NEAR(GreatestDecibel(middle), -20.0, 0.9);
    const auto greatest = std::max_element(middle.powers.begin(), middle.powers.end());
    EXPECT_NEAR(
        static_cast<double>(greatest - middle.powers.begin()) * s.GetBinHz(), 150.0, s.GetBinHz());
    // The tone nearest to 1 kHz that could fold into the picture is 3 kHz.
    const Spectrogram above = Analyse(GetParam(), 0.5, 3200.0, 0.5);
    EXPECT_LT(GreatestDecibel(above.GetColumns()[above.GetColumns().size() / 2]), -60.0);
}

TEST_P(SpectrogramAtRate, PutsAClickAtItsTime)
{
    Spectrogram s(GetParam());
    const int place = GetParam() * 3 / 10;
    for (int i = 0; i < GetParam(); ++i) {
        s.Add(i == place ? 1.0F : 0.0F);
    }
    s.Finish();
    // The Hann window is symmetric: the click's power, weighed by time, has its centre at the
    // click.
    double sum = 0;
    double weighed = 0;
    for (size_t i = 0; i < s.GetColumns().size(); ++i) {
        const double t =
            s.GetStartSeconds() + (static_cast<double>(i) + 0.5) * s.GetColumnSeconds();
        const auto power = static_cast<double>(s.GetColumns()[i].powers[5]);
        sum += power;
        weighed += power * t;
    }
    EXPECT_NEAR(weighed / sum, 0.3, 0.0006);
}

INSTANTIATE_TEST_SUITE_P(Rates,
                         SpectrogramAtRate,
                         testing::Values(8000, 11025, 16000, 44100, 48000, 96000, 192000));

TEST(SpectrogramTest, StaysBoundedAndKeepsABurstVisible)
{
    // 100 s are 20000 columns of 5 ms: folded to at most 1600, the one with the burst still bright.
    Spectrogram s(8000);
    for (int i = 0; i < 800'000; ++i) {
        s.Add(i >= 400'000 && i < 400'800
                  ? static_cast<float>(std::sin(2 * std::numbers::pi * 100 * i / 8000.0))
                  : 0.0F);
    }
    s.Finish();
    EXPECT_LT(s.GetColumns().size(), 1600U);
    EXPECT_NEAR(static_cast<double>(s.GetColumns().size()) * s.GetColumnSeconds(), 100.0, 0.2);
    const auto brightest =
        std::max_element(s.GetColumns().begin(), s.GetColumns().end(), [](auto& a, auto& b) {
            return GreatestDecibel(a) < GreatestDecibel(b);
        });
    EXPECT_GT(GreatestDecibel(*brightest), -1.5);
    EXPECT_NEAR(
        static_cast<double>(brightest - s.GetColumns().begin()) * s.GetColumnSeconds(), 50.05, 0.1);
}

TEST(PlotRecorderTest, WaveHoldsTheExtremesOfTheAverageOfChannels)
{
    Cli::PlotRecorder recorder(8000, 2);
    std::vector<double> before(2 * 84, 0.0); // ten columns and a half
    std::vector<double> after(2 * 84, 0.0);
    before[2 * 20] = 1.0; // left only: the average is a half; 20 of 8 frames a column is column 2
    after[2 * 20] = after[2 * 20 + 1] = -0.25;
    recorder.Add(before, after);
    recorder.Finish();
    ASSERT_EQ(recorder.GetWave().size(), 11U);
    EXPECT_DOUBLE_EQ(recorder.GetDuration(), 0.0105);
    EXPECT_EQ(recorder.GetWave()[2].greatestBefore, 0.5F);
    EXPECT_EQ(recorder.GetWave()[2].leastAfter, -0.25F);
    EXPECT_EQ(recorder.GetWave()[3].greatestBefore, 0.0F);
}

TEST(PlotAxisTest, StepsAreRoundAndMarksShort)
{
    EXPECT_DOUBLE_EQ(Cli::NiceStep(9.55, 14, true), 1.0);
    EXPECT_DOUBLE_EQ(Cli::NiceStep(0.12, 14, true), 0.01);
    EXPECT_DOUBLE_EQ(Cli::NiceStep(600, 14, true), 60.0);
    EXPECT_DOUBLE_EQ(Cli::NiceStep(7200, 14, true), 600.0);
    EXPECT_DOUBLE_EQ(Cli::NiceStep(1.9, 4, false), 0.5);
    EXPECT_EQ(Cli::FormatMark(0.25, 0.05), "0.25");
    EXPECT_EQ(Cli::FormatMark(3, 1), "3");
    EXPECT_EQ(Cli::FormatMark(130, 10), "2:10");
    EXPECT_EQ(Cli::FormatMark(3730, 10), "1:02:10");
}

} // namespace
