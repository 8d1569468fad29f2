// SPDX-License-Identifier: ISC
// Expected values come from the theory of the transform, never from a run of the code.
#include "restoration/dsp/puffguard/OversampledFilterbank.h"

#include "frameworks/plugincore/dsp/signal/FFTPool.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <numbers>
#include <utility>

namespace {

using Channels = std::vector<std::vector<float>>;

Channels MakeNoise(std::size_t channels, std::size_t count)
{
    Channels values;
    for (unsigned channel = 0; channel < channels; ++channel) {
        values.push_back(Support::MakeNoise(count, channel + 1));
    }
    return values;
}

std::vector<float*> GetPointers(Channels& channels)
{
    std::vector<float*> pointers;
    for (std::vector<float>& channel : channels) {
        pointers.push_back(channel.data());
    }
    return pointers;
}

/// Passes the input through in calls of `hops` hops, output over input.
Channels PassThrough(DSP::OversampledFilterbank& bank, const Channels& input, int32_t hops)
{
    Channels audio = input;
    const std::vector<float*> pointers = GetPointers(audio);
    const int32_t count = hops * bank.GetHop();
    Channels spectra(input.size(),
                     std::vector<float>(static_cast<std::size_t>(hops) *
                                        static_cast<std::size_t>(bank.GetFFTSize() + 2)));
    const std::vector<float*> bins = GetPointers(spectra);
    for (int32_t done = 0; done + count <= static_cast<int32_t>(input[0].size()); done += count) {
        bank.analyse(pointers.data(), count, bins.data(), done, 0);
        bank.synthesise(pointers.data(), count, bins.data(), done, 0);
    }
    return audio;
}

double LargestDifference(const Channels& output, const Channels& input, int32_t delay)
{
    double largest = 0;
    for (std::size_t channel = 0; channel < input.size(); ++channel) {
        for (std::size_t i = 0; i < input[channel].size(); ++i) {
            const auto shift = static_cast<std::size_t>(delay);
            const float wanted = i < shift ? 0.0F : input[channel][i - shift];
            largest = std::max(largest, std::abs(double{output[channel][i]} - double{wanted}));
        }
    }
    return largest;
}

struct RoundTrip {
    int32_t kind;
    int32_t overlapFactor;
    int32_t hops; // a call
    int32_t windowLength = -1;
};

class OversampledFilterbankRoundTrip : public testing::TestWithParam<RoundTrip> {};

TEST_P(OversampledFilterbankRoundTrip, UnchangedSpectraGiveTheInputBackHoweverItIsCut)
{
    const RoundTrip& setting = GetParam();
    DSP::FFTPool transforms("Test");
    DSP::OversampledFilterbank bank(transforms);
    bank.initialise(2, 8000, 8192);
    bank.configure(0.1F, setting.overlapFactor, setting.kind, setting.windowLength);
    const int32_t length = setting.windowLength == -1 ? 1024 : setting.windowLength;
    EXPECT_EQ(bank.GetLatency(), length - 1024 / setting.overlapFactor);
    const Channels input = MakeNoise(2, 60 * 128);
    const Channels output = PassThrough(bank, input, setting.hops);
    EXPECT_LT(LargestDifference(output, input, bank.GetLatency()), 2e-6);
    bank.reset();
    EXPECT_EQ(PassThrough(bank, input, 1), output);
}

INSTANTIATE_TEST_SUITE_P(Settings,
                         OversampledFilterbankRoundTrip,
                         testing::Values(RoundTrip{DSP::WindowBlackman, 8, 1},
                                         RoundTrip{DSP::WindowBlackman, 8, 3},
                                         RoundTrip{DSP::WindowBlackman, 8, 12},
                                         RoundTrip{DSP::WindowHann, 4, 2},
                                         RoundTrip{DSP::WindowHann, 8, 60},
                                         RoundTrip{DSP::WindowHann, 16, 1, 512}));

TEST(OversampledFilterbank, FramesAddedNowAndThenComeOntoTheirOwnChannelOnly)
{
    constexpr int F = 1024;
    constexpr int H = 128;
    DSP::FFTPool transforms("Test");
    DSP::OversampledFilterbank bank(transforms);
    bank.initialise(2, 8000, H);
    bank.configure(0.1F, 8, DSP::WindowBlackman, -1);
    Channels audio = MakeNoise(2, 40 * H);
    for (std::size_t i = 0; i < audio[1].size(); i += 3) {
        audio[1][i] = -0.0F; // a sum with 0 would lose the sign
    }
    const Channels input = audio;
    // Bins 0 to 2; above them there is nothing to read.
    const std::array<float, 6> spectrum = {200, 0, -150, 90, 70, 310};
    std::vector<double> added(audio[0].size());
    for (const std::size_t first : {3U, 4U, 20U}) {
        for (std::size_t n = 0; n < F; ++n) {
            const double turn = 2 * std::numbers::pi * static_cast<double>(n) / F;
            const double x = turn + std::numbers::pi / F;
            const double window = 0.42 - 0.5 * std::cos(x) + 0.08 * std::cos(2 * x);
            const double sample = 100 - 150 * std::cos(turn) - 90 * std::sin(turn) +
                                  70 * std::cos(2 * turn) - 310 * std::sin(2 * turn);
            added[first * H + n] += window * 2 * H / F * sample * 2 / F;
        }
    }
    for (std::size_t hop = 0; hop < 40; ++hop) {
        if (hop == 3 || hop == 4 || hop == 20) {
            bank.add(0, 3, spectrum.data());
        }
        std::array<float*, 2> pointers = {audio[0].data() + hop * H, audio[1].data() + hop * H};
        bank.giveOnto(pointers.data());
    }
    for (std::size_t i = 0; i < added.size(); ++i) {
        ASSERT_NEAR(audio[0][i], double{input[0][i]} + added[i], 2e-6) << i;
    }
    EXPECT_EQ(std::memcmp(audio[1].data(), input[1].data(), audio[1].size() * sizeof(float)), 0);
    // Out of every frame's reach: before the first, between the third's end and the last, behind.
    for (const auto& [begin, end] : {std::pair{0, 3 * H}, {12 * H, 20 * H}, {28 * H, 40 * H}}) {
        EXPECT_TRUE(
            std::equal(audio[0].begin() + begin, audio[0].begin() + end, input[0].begin() + begin))
            << begin;
    }
}

} // namespace
