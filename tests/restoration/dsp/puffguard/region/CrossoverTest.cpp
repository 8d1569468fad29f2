// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/region/Crossover.h"
#include "restoration/dsp/puffguard/region/BandCrossover.h"
#include "restoration/dsp/puffguard/region/BandMask.h"

#include "frameworks/plugincore/dsp/signal/FFTPool.h"
#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

namespace {

constexpr double Rate = 48'000;
constexpr double Infinite = DSP::RegionBox::NoUpperBound;

std::vector<float> Noise(std::size_t count)
{
    std::mt19937 random(7);
    std::vector<float> samples(count);
    for (float& sample : samples) {
        sample = static_cast<float>(random()) / 2147483648.0F - 1.0F;
    }
    return samples;
}

std::vector<float> Band(Support::TestElementHost& host,
                        std::vector<float> samples,
                        double selectivity,
                        double low,
                        double high,
                        uint32_t& latency)
{
    DSP::Crossover crossover(host);
    crossover.Configure({1, Rate, selectivity, low, high});
    latency = crossover.GetLatency();
    samples.resize(samples.size() / crossover.GetHop() * crossover.GetHop());
    float* channels[] = {samples.data()};
    crossover.Process(static_cast<uint32_t>(samples.size()), channels);
    return samples;
}

TEST(Crossover, TheBandsBelowInsideAndAboveAddUpToTheSignal)
{
    Support::TestElementHost host;
    const std::vector<float> signal = Noise(1 << 17);
    for (const auto& [low, high] : {std::pair{80.0, 300.0}, {1000.0, 1001.0}, {20.0, 20'000.0}}) {
        const double selectivity = std::min(0.25, 12 / (high - low));
        uint32_t latency = 0;
        std::vector<float> sum = Band(host, signal, selectivity, 0, low, latency);
        for (const auto& [from, to] : {std::pair{low, high}, {high, Infinite}}) {
            const std::vector<float> band = Band(host, signal, selectivity, from, to, latency);
            for (std::size_t i = 0; i < sum.size(); ++i) {
                sum[i] += band[i];
            }
        }
        double difference = 0;
        for (std::size_t i = latency; i < sum.size(); ++i) {
            difference =
                std::max(difference, static_cast<double>(std::abs(sum[i] - signal[i - latency])));
        }
        EXPECT_LT(difference, 1e-6); // -120 dBFS
    }
}

TEST(Crossover, KeepsWhatLiesInTheBandAndNothingElse)
{
    Support::TestElementHost host;
    const auto level = [&](double hertz) {
        std::vector<float> tone(1 << 16);
        for (std::size_t i = 0; i < tone.size(); ++i) {
            tone[i] = static_cast<float>(
                std::sin(2 * std::numbers::pi * hertz * static_cast<double>(i) / Rate));
        }
        uint32_t latency = 0;
        const auto band = Band(host, tone, 12.0 / 150, 0, 150, latency);
        float greatest = 0;
        for (std::size_t i = 2 * latency; i < band.size(); ++i) {
            greatest = std::max(greatest, std::abs(band[i]));
        }
        return greatest;
    };
    EXPECT_NEAR(level(60), 1.0F, 1e-3F);
    EXPECT_NEAR(level(150), 0.5F, 0.05F);
    EXPECT_LT(level(240), 1e-3F);
}

TEST(BandCrossover, GivesTheElementASignalThatBeginsAtOnce)
{
    Support::TestElementHost host;
    const DSP::Region region(std::vector<DSP::Region::Part>{{{0, 100'000, 30, Infinite}}});
    // The window's slope would pass for the quiet that the repair measures noise by.
    for (const int64_t begin : {0, 5'000}) {
        DSP::BandCrossover crossover(region, {host, 1, Rate, 100, 10});
        const uint32_t unit = crossover.GetBlockUnit();
        const uint32_t latency = crossover.GetLatencyBefore();
        std::vector<float> samples = Noise(24 * std::size_t{unit});
        float* channels[] = {samples.data()};
        crossover.Begin(begin);
        crossover.Split(24 * unit, channels);
        const uint32_t silent = begin > 0 ? 2 * latency : latency;
        EXPECT_EQ(std::count(samples.begin(), samples.begin() + silent, 0.0F), silent);
        const auto greatest =
            std::max_element(samples.begin() + silent, samples.begin() + silent + 100);
        EXPECT_GT(*greatest, 0.2F);
    }
}

TEST(BandMask, FollowsTheBoxesFrameByFrameAndLeavesSilenceAlone)
{
    Support::TestElementHost host;
    constexpr int64_t Length = 1 << 16;
    // Everything up to 1 kHz first, then only up to 200 Hz.
    const DSP::Region region({{{0, Length / 2, 0, 1000}}, {{Length / 2, Length, 0, 200}}});
    DSP::BandMask mask({host, region, 1, Rate, 480});
    std::vector<float> tone(Length);
    for (std::size_t i = 0; i < tone.size(); ++i) {
        tone[i] = static_cast<float>(
            std::sin(2 * std::numbers::pi * 600 * static_cast<double>(i) / Rate));
    }
    float* channels[] = {tone.data()};
    mask.Process(0, Length, channels);
    const auto peak = [&](std::size_t begin, std::size_t end) {
        float greatest = 0;
        for (std::size_t i = begin; i < end; ++i) {
            greatest = std::max(greatest, std::abs(tone[i]));
        }
        return greatest;
    };
    const std::size_t latency = mask.GetLatency();
    EXPECT_NEAR(peak(8'000, 24'000), 1.0F, 1e-3F);
    EXPECT_LT(peak(Length / 2 + 3 * latency, Length), 1e-3F);
    std::vector<float> silence(4 * mask.GetHop());
    DSP::BandMask fresh({host, region, 1, Rate, 480});
    channels[0] = silence.data();
    fresh.Process(0, 4 * mask.GetHop(), channels);
    EXPECT_EQ(silence, std::vector<float>(silence.size()));
}

} // namespace
