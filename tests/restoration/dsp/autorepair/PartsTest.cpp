// SPDX-License-Identifier: ISC
// The parts of the automatic repair against theory and plain twins.
#include "restoration/dsp/autorepair/KeepRule.h"
#include "restoration/dsp/autorepair/PopFinder.h"
#include "restoration/dsp/autorepair/SpanRepair.h"
#include "tests/restoration/dsp/autorepair/MemoryStore.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstring>
#include <numbers>
#include <random>

namespace {

using namespace AutoRepair;

double Sine(double frequency, double seconds)
{
    return std::sin(2 * std::numbers::pi * frequency * seconds);
}

std::vector<double> Noise(std::size_t count, double level, unsigned seed)
{
    std::mt19937 random(seed);
    std::vector<double> samples(count);
    for (double& sample : samples) {
        sample = level * (static_cast<double>(random()) / 2147483648.0 - 1.0);
    }
    return samples;
}

std::vector<FrameLevels>
Measure(const std::vector<double>& samples, int sampleRate, int channels, std::size_t block)
{
    Support::MemoryStore store;
    LevelAnalysis analysis(sampleRate, channels, store);
    for (std::size_t begin = 0; begin < samples.size(); begin += block) {
        analysis.Push(std::span(samples).subspan(begin, std::min(block, samples.size() - begin)));
    }
    analysis.Finish();
    return store.frames;
}

TEST(AutoRepairDecimator, KeepsWhatIsBelowAFifthOfItsRateInPlaceAndDropsWhatWouldFold)
{
    constexpr double Rate = 16000;
    for (const auto& [frequency, gain] :
         {std::pair(50.0, 1.0), {3150.0, 1.0}, {4850.0, 0.0}, {7990.0, 0.0}}) {
        HalfBandDecimator decimator;
        std::vector<float> output;
        for (int i = 0; i < 4000; ++i) {
            const auto sample = static_cast<float>(Sine(frequency, i / Rate));
            decimator.Process({&sample, 1}, output);
        }
        ASSERT_GT(output.size(), 1900U);
        for (std::size_t m = 50; m < 1900; ++m) {
            const double expected = gain * Sine(frequency, 2.0 * static_cast<double>(m) / Rate);
            ASSERT_NEAR(static_cast<double>(output[m]), expected, 2.5e-5) << frequency; // -92 dB
        }
    }
}

TEST(AutoRepairLevels, AToneHasItsPowerInItsBandAtEveryRate)
{
    for (const int rate : {8000, 11025, 22050, 44100, 48000, 96000, 192000}) {
        // Two channels, one of which is silent: half of the power.
        std::vector<double> samples;
        for (int i = 0; i < rate; ++i) {
            samples.push_back(0.5 * Sine(140, static_cast<double>(i) / rate));
            samples.push_back(0);
        }
        const std::vector<FrameLevels> frames = Measure(samples, rate, 2, 1000);
        ASSERT_EQ(frames.size(), 201U);
        const double expected = 10 * std::log10(0.5 * 0.5 / 2 / 2);
        // The window's main lobe is 67 Hz to each side: a little lies in the bands beside.
        EXPECT_NEAR(static_cast<double>(frames[100].bands[2]), expected, 1.0) << rate;
        EXPECT_LT(frames[100].bands[6], -100) << rate;
        EXPECT_NEAR(static_cast<double>(frames[100].shortBands[0] + frames[100].shortBands[1]) / 2,
                    expected - 3,
                    0.7)
            << rate; // on the edge: half in each
    }
}

TEST(AutoRepairLevels, HowTheRecordingIsCutChangesNoBit)
{
    const std::vector<double> samples = Noise(3 * 20011, 0.3, 1);
    const std::vector<FrameLevels> whole = Measure(samples, 44100, 3, samples.size());
    for (const std::size_t block : {std::size_t{3}, std::size_t{3 * 977}}) {
        const std::vector<FrameLevels> pieces = Measure(samples, 44100, 3, block);
        ASSERT_EQ(pieces.size(), whole.size());
        EXPECT_EQ(std::memcmp(pieces.data(), whole.data(), whole.size() * sizeof(FrameLevels)), 0);
    }
}

TEST(AutoRepairPercentile, LiesBetweenRanksOnAStraightLine)
{
    std::vector<float> values = {4, 1, 3, 2};
    EXPECT_DOUBLE_EQ(Percentile(values, 50), 2.5);
    EXPECT_DOUBLE_EQ(Percentile(values, 100), 4);
    EXPECT_NEAR(Percentile(values, 95), 3.85, 1e-6); // rank 2.85
}

TEST(AutoRepairTransform, IsThePlainSumAndGoesBack)
{
    constexpr int Length = 794; // 36 ms at 22050 Hz, no power of two
    constexpr std::size_t Bins = 50;
    constexpr std::size_t InverseBins = 14;
    std::vector<float> frame(Length);
    const std::vector<double> noise = Noise(Length, 1, 2);
    std::copy(noise.begin() + 1, noise.end(), frame.begin() + 1);
    LowBinTransform transform(Length, Bins, InverseBins);
    LowSpectra spectra(Bins);
    spectra.SetCount(1);
    transform.Forward(frame, Bins, spectra, 0);
    constexpr int Middle = Length / 2;
    std::vector<double> low(Length);
    for (std::size_t bin = 0; bin < Bins; ++bin) {
        const double step = 2 * std::numbers::pi * static_cast<double>(bin) / Length;
        std::complex<double> sum = 0;
        for (int i = 0; i < Length; ++i) {
            sum += static_cast<double>(frame[static_cast<std::size_t>(i)]) *
                   std::polar(1.0, -step * (i - Middle));
        }
        EXPECT_NEAR(static_cast<double>(spectra.GetRe(0)[bin]), sum.real(), 1e-4);
        EXPECT_NEAR(static_cast<double>(spectra.GetIm(0)[bin]), sum.imag(), 1e-4);
        for (int i = 0; i < Length && bin < InverseBins; ++i) {
            const std::complex<double> wave = sum * std::polar(1.0, step * (i - Middle));
            low[static_cast<std::size_t>(i)] += wave.real() * (bin == 0 ? 1 : 2) / Length;
        }
    }
    std::vector<float> back(Length);
    transform.Inverse(spectra, 0, back);
    for (std::size_t i = 1; i < back.size(); ++i) { // the first one a window takes away
        ASSERT_NEAR(static_cast<double>(back[i]), low[i], 1e-6) << i;
    }
}

TEST(AutoRepairSpan, TakesABurstDownOnItsChannelAtEveryRateAndLeavesAToneAlone)
{
    for (const int rate : {8000, 44100, 192000}) {
        for (const int channels : {1, 24}) {
            // A voice of 400 Hz on all channels, on the last one a burst of 60 Hz as well.
            const auto frames = static_cast<std::size_t>(rate / 2);
            const auto width = static_cast<std::size_t>(channels);
            std::vector<double> samples(frames * width);
            for (std::size_t i = 0; i < frames; ++i) {
                const double time = static_cast<double>(i) / rate;
                const double bell = std::exp(-std::pow((time - 0.25) / 0.02, 2));
                std::fill_n(samples.begin() + static_cast<std::ptrdiff_t>(i * width),
                            width,
                            0.1 * Sine(400, time) + 0.003 * Sine(60, time));
                samples[i * width + width - 1] += 0.5 * bell * Sine(60, time);
            }
            SpanRepair repair(rate, channels);
            const Span span = {0.21, 0.29};
            const Change change = repair.Compute(span, {0, samples});
            const double before = repair.MeasureLowEnd(span, {0, samples});
            EXPECT_EQ(change.lowEnd, before);
            double untouched = 0;
            std::vector<double> repaired = samples;
            for (std::size_t i = 0; i < change.samples.size(); ++i) {
                const auto place = static_cast<std::size_t>(change.first) * width + i;
                repaired[place] += change.samples[i];
                untouched =
                    std::max(untouched, i % width + 1 == width ? 0.0 : std::abs(change.samples[i]));
            }
            const double after = repair.MeasureLowEnd(span, {0, repaired});
            EXPECT_GT(before - after, 20) << rate << ' ' << channels;
            EXPECT_EQ(untouched, 0);
            EXPECT_NEAR(static_cast<double>(change.loudest) / rate, 0.25, 0.01);
        }
    }
}

TEST(AutoRepairCandidates, RunsJoinOverShortGapsSplitAtADipAndKeepOffTheEnds)
{
    ScoreTrack track;
    track.score.assign(400, -1.0F);
    track.lowEnd.assign(400, -60.0F);
    track.lowOverVoice.assign(400, 0.0F);
    const auto fill = [&](std::size_t first, std::size_t last, float score) {
        std::fill(track.score.begin() + static_cast<std::ptrdiff_t>(first),
                  track.score.begin() + static_cast<std::ptrdiff_t>(last) + 1,
                  score);
    };
    fill(2, 5, 3);   // its top is too near to the recording's beginning
    fill(50, 54, 2); // joined with the next: 30 ms from one to the other
    fill(60, 64, 2);
    fill(100, 104, 1); // no top above 1
    fill(150, 150, 9); // one frame alone
    fill(200, 230, 4); // two bursts with a dip between them
    std::fill(track.lowEnd.begin() + 201, track.lowEnd.begin() + 230, -25.0F);
    track.lowEnd[205] = track.lowEnd[225] = -20;
    track.lowEnd[215] = -33;
    const std::vector<Candidate> found = FindCandidates(track, 2.0);
    ASSERT_EQ(found.size(), 3U);
    EXPECT_NEAR(found[0].length, 0.07, 1e-12);
    EXPECT_NEAR(found[0].score, (10 * 2 - 5 * 1) / 15.0, 1e-6);
    EXPECT_NEAR(found[1].length, 0.07, 1e-12);                    // 200 to 214
    EXPECT_NEAR(found[2].length, 0.07, 1e-12);                    // 216 to 230
    EXPECT_NEAR(found[2].span.start, 216 * 0.005 + 0.002, 1e-12); // min(-0.013 + 0.3 * 0.07, 0.002)
    EXPECT_NEAR(found[2].span.end, 230 * 0.005 + 0.014 - 0.22 * 0.07, 1e-12);
}

TEST(AutoRepairKeepRule, ARecordingThatPopsIsJudgedMoreReadily)
{
    KeepRule rule(0.5);
    rule.Count(3);
    EXPECT_DOUBLE_EQ(rule.GetThreshold(10), 1.25); // one alone
    rule.Count(2.5);
    EXPECT_DOUBLE_EQ(rule.GetThreshold(10), -0.5);
    EXPECT_DOUBLE_EQ(rule.GetThreshold(21), 1.25); // less than six a minute
}

TEST(AutoRepairFinder, NothingIsFoundWhereNothingIs)
{
    constexpr int Rate = 16000;
    const auto count = static_cast<std::size_t>(4 * Rate);
    std::vector<double> tone(count);
    std::vector<double> voiceless = Noise(count, 0.2, 3);
    for (std::size_t i = 0; i < count; ++i) {
        tone[i] = 0.3 * Sine(100, static_cast<double>(i) / Rate);
    }
    const std::vector<std::pair<const char*, std::vector<double>>> recordings = {
        {"silence", std::vector<double>(count)},
        {"a constant", std::vector<double>(count, 0.5)},
        {"a tone", tone},
        {"noise", voiceless},
        {"0.3 s", Noise(4800, 0.3, 4)},
        {"1000 samples", Noise(1000, 0.3, 5)},
        {"one sample", {1.0}}};
    for (const auto& [name, samples] : recordings) {
        Support::MemoryStore store;
        PopFinder finder(Rate, 1, store);
        finder.Push(samples);
        const Findings findings = finder.Finish();
        SpanRepair repair(Rate, 1);
        for (const Candidate& candidate : findings.candidates) {
            const double removed = repair.Compute(candidate.span, {0, samples}).removed;
            EXPECT_LT(GetKeep(candidate, removed - findings.scale.speechLevel), -1) << name;
        }
    }
}

} // namespace
