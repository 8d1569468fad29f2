// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/Autocorr.h"

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "restoration/dsp/puffguard/pitch/FrameHistory.h"
#include "tests/frameworks/plugincore/dsp/kernels/Levels.h"
#include "tests/support/PlainTransform.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using DSP::Autocorr;
using DSP::Synapse::FrameHistory;
using std::numbers::pi;

constexpr int MinLag = 4;
constexpr int Step = 8;

struct Searched {
    std::vector<double> correlation;
    int firstLag = 0;
};

/// All that a frame goes through, in double precision.
Searched Analyse(const std::vector<float>& frame, int fftSize, int maxLag)
{
    const auto n = static_cast<double>(frame.size());
    const auto size = static_cast<std::size_t>(fftSize);
    Support::Spectrum windowed;
    for (const float sample : frame) {
        const double position = static_cast<double>(windowed.size()) + 0.5;
        windowed.emplace_back(static_cast<double>(sample) * (1 - std::cos(2 * pi * position / n)));
    }
    windowed.resize(size);
    Support::Spectrum magnitudes = Support::TransformInDouble(windowed);
    std::transform(magnitudes.begin(), magnitudes.end(), magnitudes.begin(), [](auto bin) {
        return std::abs(bin);
    });
    // Real and even, so that forward and back are the same but for the factor.
    const Support::Spectrum back = Support::TransformInDouble(magnitudes);
    std::vector<double> r;
    for (int lag = 0; lag <= maxLag; ++lag) {
        const double compensation = (1 - std::cos(lag * 0.5 * pi / n)) * 4 + 1;
        const double sum = back[static_cast<std::size_t>(lag)].real() / fftSize;
        r.push_back(std::max(sum * compensation, 0.0));
    }
    const auto at = [&](int lag) -> double& { return r[static_cast<std::size_t>(lag)]; };
    int end = 0;
    for (int lag = 1; lag < (MinLag + maxLag) / 2 && at(lag - 1) > at(lag); ++lag) {
        end = lag;
    }
    const int firstLag = std::max(end, MinLag);
    for (int lag = maxLag; lag >= firstLag; --lag) {
        const double s = std::min(at(lag) * 0.5, (at((lag + 1) / 2) + at(lag / 2)) * 0.125);
        at(lag) -= s;
    }
    return {r, firstLag};
}

/// A slowly falling autocorrelation from lag 0 on, as speech has it, under noise.
std::vector<float> MakeSignal(std::size_t count)
{
    std::vector<float> signal = Support::MakeNoise(count, 7);
    float state = 0;
    for (std::size_t i = 0; i < count; ++i) {
        state = 0.97F * state + signal[i];
        signal[i] = 0.1F * state + 0.3F * std::sin(0.05F * static_cast<float>(i));
    }
    return signal;
}

/// The oldest `frames` frames, of which the history may hold more.
void Compute(Autocorr& autocorr, const FrameHistory& history, int frames)
{
    for (int part = 0; part < Autocorr::Parts; ++part) {
        autocorr.ComputePart(part, history.GetFrames(), frames);
    }
}

/// Feeds the signal and drops frames in portions of all sizes, but for the last 16.
void Feed(FrameHistory& history, const std::vector<float>& signal)
{
    const std::size_t kept = signal.size() - std::size_t{Autocorr::MaxFrames} * Step;
    int portion = 1;
    for (std::size_t i = 0; i < signal.size(); ++i) {
        if (i <= kept && (i == kept || history.GetDueCount() == FrameHistory::MaxDue)) {
            history.DropFrames(i == kept ? history.GetDueCount() : portion);
            portion = portion * 5 % 17;
        }
        history.Append(signal[i]);
    }
}

class AutocorrOfSize : public testing::TestWithParam<int> {
protected:
    const int maxLag = GetParam();
    const std::vector<float> signal =
        MakeSignal(static_cast<std::size_t>(maxLag) * 4 / Step * Step);
};

TEST_P(AutocorrOfSize, EqualsTheDoublePrecisionForm)
{
    Autocorr autocorr(MinLag, maxLag);
    const int length = autocorr.GetFrameLength();
    FrameHistory history(length, Step);
    Feed(history, signal);
    const int due = history.GetDueCount();
    ASSERT_EQ(due, Autocorr::MaxFrames);
    Compute(autocorr, history, due);
    bool hasFallen = false;
    for (const int frame : {0, 4, due - 1}) {
        // The latest frame ends a step before the signal does.
        const auto end = signal.end() - Step - (due - 1 - frame) * Step;
        const Searched expected =
            Analyse(std::vector<float>(end - length, end), autocorr.GetFftSize(), maxLag);
        EXPECT_EQ(autocorr.GetFirstLag(frame), expected.firstLag) << frame;
        hasFallen |= expected.firstLag > MinLag;
        const auto correlation = autocorr.GetCorrelation(frame);
        for (std::size_t lag = 0; lag < expected.correlation.size(); ++lag) {
            // Compensation makes up to three times of what a transform of lag 0 may be off.
            ASSERT_NEAR(
                double{correlation[lag]}, expected.correlation[lag], 3e-6 * expected.correlation[0])
                << frame << " " << lag;
        }
        EXPECT_EQ(correlation.back(), 0.0F);
    }
    EXPECT_TRUE(hasFallen);
}

TEST_P(AutocorrOfSize, EveryLevelAndNumberOfFramesGivesTheSameBits)
{
    FrameHistory history(Autocorr(MinLag, maxLag).GetFrameLength(), Step);
    Feed(history, signal);
    const int due = history.GetDueCount();
    Autocorr baseline(
        MinLag, maxLag, DSP::Kernels::GetKernels(DSP::Kernels::Level::Baseline).correlation);
    Compute(baseline, history, due);
    for (const DSP::Kernels::Level level : Support::GetSupportedLevels()) {
        Autocorr autocorr(MinLag, maxLag, DSP::Kernels::GetKernels(level).correlation);
        for (int frames = 1; frames <= due; ++frames) {
            Compute(autocorr, history, frames);
            const int last = frames - 1;
            const auto correlation = autocorr.GetCorrelation(last);
            const auto expected = baseline.GetCorrelation(last);
            EXPECT_EQ(std::vector<float>(correlation.begin(), correlation.end()),
                      std::vector<float>(expected.begin(), expected.end()))
                << static_cast<int>(level) << " " << frames;
            EXPECT_EQ(autocorr.GetFirstLag(last), baseline.GetFirstLag(last));
        }
    }
}

// The longest and the shortest frame for a transform of 256 or 512 samples, of odd lengths, and
// those of 44.1, 48 and 96 kHz.
INSTANTIATE_TEST_SUITE_P(Sizes, AutocorrOfSize, testing::Values(91, 92, 245, 266, 533));

TEST(Autocorr, SilenceHasNoCorrelation)
{
    FrameHistory history(441, Step);
    history.Append(1); // the frame that this sample makes due ends before it
    ASSERT_EQ(history.GetDueCount(), 1);
    Autocorr autocorr(MinLag, 245);
    Compute(autocorr, history, 1);
    const auto silent = autocorr.GetCorrelation(0);
    EXPECT_EQ(std::vector<float>(silent.begin(), silent.end()), std::vector<float>(silent.size()));
    EXPECT_EQ(autocorr.GetFirstLag(0), MinLag);
}

} // namespace
