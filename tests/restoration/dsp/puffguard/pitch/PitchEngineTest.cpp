// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/PitchEngine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>
#include <random>
#include <vector>

namespace {

using DSP::Synapse::PitchEngine;
using DSP::Synapse::VocalRange;

constexpr int DelayFrames = 64;
/// What a steady tone's pitch may be off, as a fraction: the compensation of the window's fall and
/// the removal of ghosts each tilt the peaks of the autocorrelation by up to a sample or two.
constexpr double Bias = 0.025;

/// An engine that analyses.
struct Analysis {
    explicit Analysis(double sampleRate)
        : engine(sampleRate, DelayFrames)
    {
        engine.SetVocalRange(VocalRange::Bass);
        engine.SetAnalysing(true);
    }

    /// Pitch at the end of each block of this many samples, no more than a run's, for each of its
    /// samples.
    std::vector<float> Run(std::vector<float> signal, std::size_t block = 8)
    {
        std::vector<float> pitches;
        for (std::size_t at = 0; at < signal.size(); at += block) {
            const std::size_t frames = std::min(block, signal.size() - at);
            engine.Process(std::span(signal).subspan(at, frames));
            pitches.insert(pitches.end(), frames, engine.GetPitch());
        }
        return pitches;
    }

    /// The same from work that is done `parts` at a time while the next block comes in.
    std::vector<float> RunLate(std::vector<float> signal, std::size_t block, int parts)
    {
        constexpr std::size_t Piece = 50;
        signal.resize((signal.size() / block + 1) * block); // the last one is for the one before
        std::vector<float> pitches;
        for (std::size_t at = 0; at < signal.size(); at += block) {
            for (std::size_t done = 0; done < block; done += Piece) {
                engine.Advance(parts);
                const std::size_t frames = std::min(Piece, block - done);
                engine.Process(std::span(signal).subspan(at + done, frames));
            }
            if (at > 0) {
                pitches.insert(pitches.end(), block, engine.GetBlockPitch());
            }
            engine.EndBlock();
        }
        return pitches;
    }

    PitchEngine engine;
};

/// Tone with falling harmonics whose frequency is a function of the time in seconds.
std::vector<float> MakeVoice(double sampleRate,
                             double seconds,
                             const std::function<double(double)>& frequencyHz,
                             int harmonics = 8)
{
    std::vector<float> signal(static_cast<std::size_t>(sampleRate * seconds));
    double phase = 0;
    for (std::size_t i = 0; i < signal.size(); ++i) {
        phase +=
            2 * std::numbers::pi * frequencyHz(static_cast<double>(i) / sampleRate) / sampleRate;
        double value = 0;
        for (int k = 1; k <= harmonics; ++k) {
            value += 0.2 / k * std::sin(k * phase);
        }
        signal[i] = static_cast<float>(value);
    }
    return signal;
}

std::vector<float>
MakeTone(double sampleRate, double seconds, double frequencyHz, int harmonics = 8)
{
    return MakeVoice(
        sampleRate, seconds, [=](double) { return frequencyHz; }, harmonics);
}

std::vector<float> MakeNoise(std::size_t count)
{
    std::mt19937 random(11);
    std::normal_distribution<float> level(0, 0.1F);
    std::vector<float> noise(count);
    std::generate(noise.begin(), noise.end(), [&] { return level(random); });
    return noise;
}

class PitchEngineAtRate : public testing::TestWithParam<double> {};

TEST_P(PitchEngineAtRate, FindsThePitchOfTonesAndNoneInSilence)
{
    const std::vector<float> silence(static_cast<std::size_t>(GetParam()));
    EXPECT_EQ(Analysis(GetParam()).Run(silence), std::vector<float>(silence.size(), 0.0F));
    const std::vector<float> sine = Analysis(GetParam()).Run(MakeTone(GetParam(), 1.0, 150, 1));
    EXPECT_NEAR(sine.back(), 150.0F, 150 * Bias);
    for (const double frequencyHz : {70.0, 110.0, 223.0}) {
        Analysis analysis(GetParam());
        const std::vector<float> pitches = analysis.Run(MakeTone(GetParam(), 1.0, frequencyHz));
        for (std::size_t i = pitches.size() * 8 / 10; i < pitches.size(); ++i) {
            ASSERT_NEAR(static_cast<double>(pitches[i]), frequencyHz, frequencyHz * Bias) << i;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Rates,
                         PitchEngineAtRate,
                         testing::Values(8000, 16000, 22050, 24000, 44100, 48000, 96000, 192000));

TEST(PitchEngine, NoiseIsMostlyUnvoiced)
{
    Analysis analysis(44100);
    const std::vector<float> pitches = analysis.Run(MakeNoise(4 * 44100));
    const auto unvoiced = std::count(pitches.begin(), pitches.end(), 0.0F);
    EXPECT_GT(static_cast<double>(unvoiced), 0.7 * static_cast<double>(pitches.size()));
}

TEST(PitchEngine, ReportsAChangeOneLatencyLate)
{
    constexpr double Rate = 44100;
    constexpr double ChangeSeconds = 0.8;
    Analysis analysis(Rate);
    ASSERT_EQ(analysis.engine.GetLatency(), 4978);
    const auto glide = [](double t) {
        return 110.0 + 40.0 * std::clamp((t - ChangeSeconds) / 0.04 + 0.5, 0.0, 1.0);
    };
    const std::vector<float> pitches = analysis.Run(MakeVoice(Rate, 1.5, glide));
    const auto begin = pitches.begin() + static_cast<std::ptrdiff_t>(Rate * ChangeSeconds);
    const auto middle =
        std::find_if(begin, pitches.end(), [](float pitchHz) { return pitchHz > 130; });
    // The frame of 40 ms blurs the glide; a quarter of it, 10 ms, is what the middle may be off.
    EXPECT_NEAR(static_cast<double>(middle - begin), 4978.0, 441.0);
}

TEST(PitchEngine, HoldsThroughABriefOctaveJump)
{
    constexpr double Rate = 48000;
    // One period in which the voice creaks at half its pitch.
    const auto creak = [](double t) { return t > 0.7 && t < 0.7 + 1 / 60.0 ? 60.0 : 120.0; };
    Analysis analysis(Rate);
    const std::vector<float> pitches = analysis.Run(MakeVoice(Rate, 1.4, creak));
    for (std::size_t i = pitches.size() / 2; i < pitches.size(); ++i) {
        ASSERT_GT(pitches[i], 90.0F) << i;
        ASSERT_LT(pitches[i], 135.0F) << i;
    }
}

TEST(PitchEngine, DoesNotDependOnTheCutIntoBlocks)
{
    const std::vector<float> signal = MakeTone(48000, 0.6, 140);
    const std::vector<float> each = Analysis(48000).Run(signal, 1);
    ASSERT_GT(*std::max_element(each.begin(), each.end()), 0.0F);
    const auto expectPitches = [&](const std::vector<float>& pitches, std::size_t block) {
        for (std::size_t end = block; end <= signal.size(); end += block) {
            ASSERT_EQ(pitches[end - 1], each[end - 1]) << block << " " << end;
        }
    };
    for (const std::size_t block : {std::size_t{17}, std::size_t{480}, std::size_t{4096}}) {
        expectPitches(Analysis(48000).Run(signal, block), block);
    }
    // The work on a block goes on while the next one comes in: in time, late, or not before asked.
    for (const int parts : {1, 3, PitchEngine::BlockParts, 0}) {
        for (const std::size_t block : {std::size_t{512}, std::size_t{200}}) {
            expectPitches(Analysis(48000).RunLate(signal, block, parts), block);
        }
    }
}

TEST(PitchEngine, ResetRepeatsTheFirstRunBitForBit)
{
    std::vector<float> signal = MakeTone(48000, 1.1, 140);
    const std::vector<float> noise = MakeNoise(signal.size());
    std::transform(signal.begin(), signal.end(), noise.begin(), signal.begin(), std::plus<>());
    for (const bool looksAhead : {true, false}) { // without, the first runs show at once
        Analysis analysis(48000);
        analysis.engine.SetDynamicProgramming(looksAhead);
        const std::vector<float> first = analysis.Run(signal, 40);
        ASSERT_GT(*std::max_element(first.begin(), first.end()), 0.0F);
        analysis.Run(MakeTone(48000, 1.0, 200), 40);
        analysis.engine.Reset(); // nothing of either pass may show in the next
        EXPECT_EQ(analysis.Run(signal, 40), first);
        // Nor of a block that was being worked on.
        analysis.engine.Reset();
        analysis.engine.Process(std::span(signal).first(512));
        analysis.engine.EndBlock();
        analysis.engine.Advance(3);
        analysis.engine.Reset();
        EXPECT_EQ(analysis.Run(signal, 40), first);
    }
}

TEST(PitchEngine, PrefiltersAndClippingAreHeard)
{
    const std::vector<float> signal = MakeTone(48000, 0.8, 140);
    const auto run = [&](const std::function<void(PitchEngine&)>& change) {
        Analysis analysis(48000);
        change(analysis.engine);
        return analysis.Run(signal);
    };
    const std::vector<float> standard = run([](PitchEngine&) {});
    const auto clip = [](PitchEngine& engine) { engine.GetPrefilter().SetClippingThreshold(0.5F); };
    EXPECT_NE(run(clip), standard);
    EXPECT_NEAR(run(clip).back(), 140.0F, 1.4F); // a clipped tone keeps its pitch
    EXPECT_NE(run([](PitchEngine& engine) { engine.GetPrefilter().SetLowpass(2000); }), standard);
    EXPECT_NE(run([](PitchEngine& engine) { engine.GetPrefilter().SetHighpass(20); }), standard);
    // A corner beyond the decimated spectrum silences everything.
    EXPECT_EQ(run([](PitchEngine& engine) { engine.GetPrefilter().SetHighpass(6500); }).back(),
              0.0F);
}

TEST(PitchEngine, WithoutDynamicProgrammingNothingWaits)
{
    constexpr double Rate = 44100;
    Analysis analysis(Rate);
    analysis.engine.SetDynamicProgramming(false);
    EXPECT_EQ(analysis.engine.GetLatency(), 890);
    const std::vector<float> pitches = analysis.Run(MakeTone(Rate, 0.2, 140));
    const auto voiced =
        std::find_if(pitches.begin(), pitches.end(), [](float pitchHz) { return pitchHz > 138; });
    EXPECT_LT(voiced - pitches.begin(), 4410);
    EXPECT_NEAR(pitches.back(), 140.0F, 140 * Bias);
}

} // namespace
