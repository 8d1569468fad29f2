// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/PuffGuard.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numbers>
#include <random>
#include <utility>

namespace {

using DSP::Context;
using DSP::Shared::PuffGuard;
using Channels = std::vector<std::vector<float>>;

constexpr uint32_t Mono = 0;
constexpr uint32_t Stereo = 1;
constexpr float Rate = 16000;        // F = 2048, H = 256, N = 15 at scaling 1
constexpr std::size_t Burst = 32000; // sample at which the burst begins

/// Quiet noise with a tone as reference, and one burst of 45 Hz over 60 ms.
std::vector<float> MakeSpeechWithBurst(float burst)
{
    std::mt19937 generator(1);
    std::uniform_real_distribution<float> noise(-0.003F, 0.003F);
    std::vector<float> samples(64000);
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const double time = static_cast<double>(i) / static_cast<double>(Rate);
        samples[i] = noise(generator);
        const double since = time - static_cast<double>(Burst) / static_cast<double>(Rate);
        if (since >= 0 && since < 0.06) {
            samples[i] += burst * static_cast<float>(std::sin(2 * std::numbers::pi * 45 * since));
        }
    }
    return samples;
}

class PuffGuardTest : public testing::Test {
protected:
    void Make(float rate, uint32_t layout)
    {
        element = std::make_unique<PuffGuard>(PuffGuard::Format{host, rate, layout}, *log);
        element->SetFloatValue(PuffGuard::FrequencyLimit, 200, Context::Process, {});
    }

    void Set(PuffGuard::Param param, float value)
    {
        element->SetFloatValue(param, value, Context::Process, {});
    }

    /// Output of the whole input, as long as it, in blocks of the given length.
    Channels Run(Channels audio, std::size_t block = 512)
    {
        for (std::size_t done = 0; done < audio[0].size(); done += block) {
            std::vector<float*> pointers;
            for (std::vector<float>& channel : audio) {
                pointers.push_back(channel.data() + done);
            }
            const std::size_t frames = std::min(block, audio[0].size() - done);
            element->Process(static_cast<uint32_t>(frames), pointers.data());
        }
        return audio;
    }

    std::vector<DetectionRecord> GetRepairs() const
    {
        std::vector<DetectionRecord> repairs(DSP::DetectionLog::Capacity);
        uint32_t position = 0;
        repairs.resize(log->Read(position, repairs));
        return repairs;
    }

    /// The strongest repair from running number `first` on; one burst may be repaired in pieces.
    DetectionRecord GetStrongest(std::size_t first = 0) const
    {
        const std::vector<DetectionRecord> repairs = GetRepairs();
        return *std::max_element(repairs.begin() + static_cast<std::ptrdiff_t>(first),
                                 repairs.end(),
                                 [](const DetectionRecord& a, const DetectionRecord& b) {
                                     return a.detection < b.detection;
                                 });
    }

    /// Largest difference of the output to the input, late by the latency.
    double GetDifference(const std::vector<float>& output, const std::vector<float>& input) const
    {
        const std::size_t latency = element->GetLatency(Context::Process);
        double largest = 0;
        for (std::size_t i = 0; i < output.size(); ++i) {
            const float wanted = i < latency ? 0.0F : input[i - latency];
            largest = std::max(largest, std::abs(double{output[i]} - double{wanted}));
        }
        return largest;
    }

    Support::TestElementHost host;
    std::unique_ptr<DSP::DetectionLog> log = std::make_unique<DSP::DetectionLog>();
    std::unique_ptr<PuffGuard> element;
};

TEST_F(PuffGuardTest, BurstIsTakenDownAndTheRestPasses)
{
    const std::vector<float> input = MakeSpeechWithBurst(0.5F);
    Make(Rate, Mono);
    const std::vector<float> output = Run({input})[0];
    ASSERT_FALSE(GetRepairs().empty());
    const DetectionRecord repair = GetStrongest();
    // The burst's middle, within a hop or two.
    EXPECT_NEAR(static_cast<double>(repair.centre), Burst + 480.0, 512.0);
    EXPECT_EQ(repair.severity, 1.0F);
    EXPECT_EQ(repair.pitchHz, 0.0F);
    EXPECT_EQ(repair.repairedBins, 31U); // 240 * 2048 / 16000 = 30.7
    // The middle of 15 frames is 7 behind the newest one; a frame that ends with hop f is centred
    // half of F = 2048 before that end.
    EXPECT_EQ(repair.centre, (int64_t{repair.hop} - 7 + 1) * 256 - 1024);
    EXPECT_EQ(repair.start, repair.centre - 256 * (7 - int64_t{repair.regionStart}));
    EXPECT_EQ(repair.end - repair.start, 256 * (repair.regionEnd - repair.regionStart));
    EXPECT_LT(repair.energyAfter, repair.energyBefore * 0.03);
    const DetectionTotalsRecord totals = log->GetTotals();
    EXPECT_EQ(totals.hops, 250U); // 64000 / 256
    EXPECT_EQ(totals.detections, GetRepairs().size());
    // Nearly all that the low band holds is the burst, and the region has all of it but its fringe.
    EXPECT_GT(repair.energyBefore, totals.bandEnergy * 0.8);
    EXPECT_LT(repair.energyBefore, totals.bandEnergy);

    const std::size_t latency = element->GetLatency(Context::Process);
    double before = 0;
    double after = 0;
    double rest = 0;
    for (std::size_t i = latency; i < output.size(); ++i) {
        const std::size_t at = i - latency;
        if (at >= Burst && at < Burst + 960) {
            before += double{input[at]} * double{input[at]};
            after += double{output[i]} * double{output[i]};
        } else if (at + 4096 < Burst || at > Burst + 5056) {
            rest = std::max(rest, std::abs(double{output[i]} - double{input[at]}));
        }
    }
    EXPECT_LT(after, before * 0.1);
    EXPECT_EQ(rest, 0.0);
}

TEST_F(PuffGuardTest, WithoutSensitivityNothingIsFoundAndWithoutStrengthNothingIsTakenDown)
{
    const std::vector<float> input = MakeSpeechWithBurst(0.5F);
    Make(Rate, Mono);
    Set(PuffGuard::Sensitivity, 0);
    EXPECT_EQ(GetDifference(Run({input})[0], input), 0.0);
    EXPECT_TRUE(GetRepairs().empty());
    element->Reset();
    Set(PuffGuard::Sensitivity, 5);
    Set(PuffGuard::Strength, 0);
    EXPECT_LT(GetDifference(Run({input})[0], input), 1e-6);
    EXPECT_FALSE(GetRepairs().empty()); // found, but the target is 120 dB up
}

TEST_F(PuffGuardTest, SameBurstInAllChannelsIsTheMonoCase)
{
    // Channels combine by their largest, not by their sum.
    const std::vector<float> input = MakeSpeechWithBurst(0.5F);
    Make(Rate, Mono);
    const std::vector<float> mono = Run({input})[0];
    const DetectionRecord one = GetStrongest();
    const std::size_t count = GetRepairs().size();
    std::size_t first = count;
    for (const auto& [layout, channels] : {std::pair{Stereo, 2U}, {3U, 3U}, {8U, 6U}, {34U, 24U}}) {
        Make(Rate, layout);
        const Channels output = Run(Channels(channels, input));
        EXPECT_EQ(GetRepairs().size(), first + count);
        const DetectionRecord all = GetStrongest(first);
        EXPECT_EQ(all.detection, one.detection);
        EXPECT_NEAR(all.energyBefore, channels * one.energyBefore, 1e-9 * all.energyBefore);
        for (std::size_t channel = 0; channel < channels; ++channel) {
            EXPECT_EQ(output[channel], mono) << channels << " " << channel;
        }
        first += count;
    }
}

TEST_F(PuffGuardTest, ChannelBelowTheTargetKeepsItsLevel)
{
    // The burst stands in the first channel only; the second one's noise is 20 dB below the noise
    // that the target is drawn through.
    const std::vector<float> input = MakeSpeechWithBurst(0.5F);
    std::vector<float> quiet = MakeSpeechWithBurst(0.0F);
    for (float& sample : quiet) {
        sample *= 0.1F;
    }
    Make(Rate, Stereo);
    const Channels output = Run({input, quiet});
    ASSERT_GE(GetRepairs().size(), 1U);
    EXPECT_GT(GetDifference(output[0], input), 0.1);
    // A few bins of noise dip below the target's; none of the burst's reduction reaches this
    // channel.
    EXPECT_LT(GetDifference(output[1], quiet), 1e-4);
}

TEST_F(PuffGuardTest, CutsChangeNoBitThoughParametersMoveAndResetsComeInMidHop)
{
    const Channels input = {MakeSpeechWithBurst(0.5F), MakeSpeechWithBurst(0.2F)};
    // All within hops of 256. The burst is repaired while sensitivity and strength move, once after
    // work of a reset hop has fallen away.
    const std::vector<std::size_t> events = {20100, 33100, 34900, 35015, 35100, 35300, 36001};
    const auto act = [&](std::size_t number) {
        if (number == 0) {
            element->Reset();
            return;
        }
        Set(PuffGuard::Sensitivity, number % 2 == 0 ? 9.0F : 4.0F);
        Set(PuffGuard::Strength, static_cast<float>(3 + number));
        Set(PuffGuard::FrequencyLimit, 150.0F + 50.0F * static_cast<float>(number));
    };
    std::mt19937 generator(3);
    const auto run = [&](std::size_t longest) {
        Make(Rate, Stereo);
        Channels audio = input;
        std::size_t number = 0;
        for (std::size_t done = 0; done < audio[0].size();) {
            if (number < events.size() && done == events[number]) {
                act(number++);
            }
            const std::size_t end = number < events.size() ? events[number] : audio[0].size();
            const std::size_t frames = std::min(end - done, 1 + generator() % longest);
            float* pointers[] = {audio[0].data() + done, audio[1].data() + done};
            element->Process(static_cast<uint32_t>(frames), pointers);
            done += frames;
        }
        return audio;
    };
    const Channels expected = run(1); // sample by sample
    const std::size_t count = GetRepairs().size();
    ASSERT_GE(count, 1U);
    for (const std::size_t longest : {40U, 300U, 2000U, 64000U}) {
        EXPECT_EQ(run(longest), expected) << longest;
        EXPECT_EQ(GetRepairs().size() % count, 0U);
    }
}

TEST_F(PuffGuardTest, OthersMayUseTheHostsTransformsInMidHop)
{
    const std::vector<float> input = MakeSpeechWithBurst(0.5F);
    Make(Rate, Stereo);
    const Channels wanted = Run({input, input});
    Make(Rate, Stereo);
    const std::size_t step = element->GetHop() / 16;
    DSP::FFTImpl<float>* const transform = host.GetFFT(11);
    ASSERT_EQ(static_cast<uint32_t>(transform->GetSize()), element->GetFrameSize());
    std::vector<float> spectrum(element->GetFrameSize() + 2);
    for (std::size_t done = 0; done < input.size(); done += step) {
        const auto begin = input.begin() + static_cast<std::ptrdiff_t>(done);
        const std::vector<float> piece(begin, begin + static_cast<std::ptrdiff_t>(step));
        const Channels output = Run({piece, piece}, step);
        ASSERT_TRUE(std::equal(output[0].begin(), output[0].end(), wanted[0].data() + done))
            << done;
        transform->Forward(input.data(), spectrum.data());
    }
    EXPECT_GT(GetRepairs().size(), 0U);
}

TEST_F(PuffGuardTest, ParametersCountAsTheyAreAtTheEndOfAHop)
{
    const std::vector<float> input = MakeSpeechWithBurst(0.5F);
    // They move in every hop of 256, always so many samples after its begin.
    const auto run = [&](std::size_t offset) {
        Make(Rate, Mono);
        std::vector<float> audio = input;
        float* channel = audio.data();
        for (std::size_t hop = 0; hop < audio.size() / 256; ++hop, channel += 256 - offset) {
            element->Process(static_cast<uint32_t>(offset), &channel);
            channel += offset;
            Set(PuffGuard::Sensitivity, hop % 2 == 0 ? 9.0F : 4.0F);
            Set(PuffGuard::Strength, static_cast<float>(hop % 10));
            Set(PuffGuard::FrequencyLimit, 150.0F + static_cast<float>(hop));
            element->Process(static_cast<uint32_t>(256 - offset), &channel);
        }
        return audio;
    };
    const std::vector<float> expected = run(255);
    ASSERT_FALSE(GetRepairs().empty());
    for (const std::size_t offset : {1U, 100U, 200U}) {
        EXPECT_EQ(run(offset), expected) << offset;
    }
}

TEST_F(PuffGuardTest, RepairLeavesNothingToOneOfANarrowerBand)
{
    std::vector<float> input = MakeSpeechWithBurst(0.5F);
    input.insert(input.end(), input.begin(), input.end());
    const std::size_t second = input.size() / 2; // from here on the band is narrow
    const auto run = [&](float firstLimit) {
        Make(Rate, Mono);
        Set(PuffGuard::FrequencyLimit, firstLimit);
        std::vector<float> audio = input;
        float* channel = audio.data();
        element->Process(static_cast<uint32_t>(second), &channel);
        Set(PuffGuard::FrequencyLimit, 100);
        channel += second;
        element->Process(static_cast<uint32_t>(audio.size() - second), &channel);
        EXPECT_GE(GetRepairs().size(), 2U);
        return std::vector<float>(audio.begin() + static_cast<std::ptrdiff_t>(second + Burst / 2),
                                  audio.end());
    };
    EXPECT_EQ(run(500), run(100));
}

TEST_F(PuffGuardTest, ResetAndRestartRepeatTheFirstRun)
{
    // Audio and what it may hide: every hop's values, with a tone that has a pitch.
    std::vector<float> input = MakeSpeechWithBurst(0.5F);
    for (std::size_t i = 0; i < input.size(); ++i) {
        const double turn = 2 * std::numbers::pi * 150 * static_cast<double>(i) / double{Rate};
        input[i] += 0.1F * static_cast<float>(std::sin(turn) + 0.5 * std::sin(2 * turn));
    }
    Make(Rate, Mono);
    struct Result {
        std::vector<float> audio;
        std::vector<std::array<float, 3>> hops;
        bool operator==(const Result&) const = default;
    };
    const auto run = [&] {
        Result result{input, {}};
        for (std::size_t done = 0; done < input.size(); done += 256) {
            float* channel = result.audio.data() + done;
            element->Process(256, &channel);
            const PuffGuard::FrameReport& hop = element->GetLatest();
            result.hops.push_back({hop.detection, hop.threshold, hop.pitchHz});
        }
        return result;
    };
    const Result first = run();
    EXPECT_NEAR(first.hops[100][2], 150.0F, 2.0F);
    EXPECT_GT(element->GetLatest().threshold, 0.0F);
    element->Reset();
    EXPECT_EQ(element->GetLatest().threshold, 0.0F);
    EXPECT_TRUE(run() == first);
    const std::vector<DetectionRecord> both = GetRepairs();
    const std::size_t count = both.size() / 2;
    ASSERT_GE(count, 1U);
    EXPECT_EQ(both[0].restart, 0U);
    EXPECT_EQ(both[count].restart, 1U);
    EXPECT_EQ(both[count].centre, both[0].centre);
    // There and back: everything restarts; only the tail's samples are not the repair's to clear.
    Set(PuffGuard::LatencyScaling, 0.25F);
    EXPECT_EQ(element->GetLatest().threshold, 0.0F);
    run();
    Set(PuffGuard::LatencyScaling, 1);
    element->ResetTails();
    EXPECT_TRUE(run() == first);
    EXPECT_EQ(GetRepairs().back().restart, 3U);
    EXPECT_EQ(GetRepairs().back().centre, both.back().centre);
}

TEST_F(PuffGuardTest, RatesFarOutsideAudioAreRefusedOrBorne)
{
    for (const float rate : {1.9e6F, 3e38F, 0.0F, -1.0F, std::nanf("")}) {
        EXPECT_THROW(Make(rate, Mono), std::invalid_argument) << rate;
    }
    for (const float rate : {0.5F, 10.0F, 100.0F, 1000.0F, 384000.0F}) {
        Make(rate, Stereo);
        const std::vector<float> noise = MakeSpeechWithBurst(0.5F);
        const Channels output = Run({noise, noise});
        EXPECT_TRUE(std::all_of(output[1].begin(), output[1].end(), [](float sample) {
            return std::isfinite(sample);
        })) << rate;
    }
}

} // namespace
