// SPDX-License-Identifier: ISC
// A bypass that comes and goes: at the entry hard and in step, in every format without a click.
#include "tests/contract/support/FormatTest.h"

#include <algorithm>
#include <cmath>
#include <ctime>
#include <numbers>
#include <random>

namespace {

using namespace Contract;
using TestHost::GlobalBypass;

constexpr uint32_t FadeFrames = 480; // 10 ms

/// Where a take is switched, in frames.
struct Switches {
    uint32_t on;
    uint32_t off;
};

class FormatBypass : public FormatTest {
protected:
    static bool IsSoft() { return GetParam().binary != GetFormats().front().binary; }

    static void SetBypass(FormatHost& host, bool isOn)
    {
        host.SetParameter(GlobalBypass, isOn ? 1.0F : 0.0F);
    }

    // One that repairs as much as it can.
    static std::unique_ptr<FormatHost> MakeStrong()
    {
        auto host = Make();
        host->SetParameter(TestHost::Strength, 1.0F);
        Settle(*host, 2);
        return host;
    }

    // With the bypass on from one frame to the other, in blocks of up to `longest` frames between.
    static Audio
    PlaySwitched(FormatHost& host, const Audio& input, const Switches& at, uint32_t longest)
    {
        uint32_t done = 0;
        return Play(host, input, [&] {
            SetBypass(host, done >= at.on && done < at.off);
            const uint32_t next = done < at.on ? at.on : done < at.off ? at.off : ~0U;
            const uint32_t block = std::min(longest, next - done);
            done += block;
            return block;
        });
    }
};

Audio From(const Audio& input, uint32_t begin)
{
    Audio rest;
    for (const auto& channel : input) {
        rest.emplace_back(channel.begin() + begin, channel.end());
    }
    return rest;
}

uint32_t FurthestApart(const std::vector<float>& one, const std::vector<float>& other)
{
    uint32_t furthest = 0;
    for (uint32_t i = 0; i < one.size(); ++i) {
        if (std::abs(one[i] - other[i]) > std::abs(one[furthest] - other[furthest])) {
            furthest = i;
        }
    }
    return furthest;
}

float LargestStep(const Audio& audio)
{
    float largest = 0.0F;
    for (const auto& channel : audio) {
        for (size_t i = 1; i < channel.size(); ++i) {
            largest = std::max(largest, std::abs(channel[i] - channel[i - 1]));
        }
    }
    return largest;
}

// Whether a fade from one to the other has nothing of its own in it.
void ExpectBetween(const Audio& take, const Audio& one, const Audio& other, uint32_t begin)
{
    for (size_t c = 0; c < take.size(); ++c) {
        for (uint32_t i = begin; i < begin + FadeFrames; ++i) {
            const auto [low, high] = std::minmax(one[c][i], other[c][i]);
            ASSERT_TRUE(take[c][i] >= low - 1e-6F && take[c][i] <= high + 1e-6F) << i;
        }
    }
}

Audio MakeSine(double seconds)
{
    std::vector<float> sine(static_cast<size_t>(48000 * seconds));
    for (size_t i = 0; i < sine.size(); ++i) {
        sine[i] = static_cast<float>(
            0.5 * std::sin(2 * std::numbers::pi * 440 * static_cast<double>(i) / 48000));
    }
    return {sine, sine};
}

} // namespace

// The repair begins anew when it comes back, and is silent for one latency.
TEST_P(FormatBypass, ComesAmidARepairAndGoesWithoutAStepOrALostSample)
{
    auto host = MakeStrong();
    const uint32_t latency = host->GetLatency();
    const Audio speech = MakeSpeech(Rate, 2, 2.0);
    const auto frames = static_cast<uint32_t>(speech[0].size());
    const Audio repaired = Expected(speech, Rate, {.strength = 1.0F});
    const Audio late = Delayed(speech, latency);
    const uint32_t on = FurthestApart({repaired[0].begin(), repaired[0].begin() + 48000}, late[0]);
    ASSERT_GT(std::abs(repaired[0][on] - late[0][on]), 0.1F) << "nothing to tell them by";
    const Switches at = {on, on + 5000};
    Audio anew = Expected(From(speech, at.off), Rate, {.strength = 1.0F});
    for (auto& channel : anew) {
        channel.insert(channel.begin(), at.off, 0.0F);
    }

    const Audio output = PlaySwitched(*host, speech, at, 700);
    EXPECT_EQ(Difference(output, repaired, 0, at.on), "");
    if (!IsSoft()) {
        EXPECT_EQ(Difference(output, late, at.on, at.off), "");
        EXPECT_EQ(Difference(output, anew, at.off, frames), "");
        return;
    }
    const uint32_t sound = at.off + latency;
    EXPECT_EQ(Difference(output, late, at.on + FadeFrames - 1, sound), "");
    EXPECT_EQ(Difference(output, anew, sound + FadeFrames - 1, frames), "");
    ExpectBetween(output, repaired, late, at.on);
    ExpectBetween(output, late, anew, sound);
    EXPECT_LT(LargestStep(output), LargestStep(late) * 1.1F);
    for (const uint32_t longest : {64U, 1U << 16U}) {
        host->Reset();
        EXPECT_EQ(Difference(PlaySwitched(*host, speech, at, longest), output), "") << longest;
    }
}

// Whatever it may come upon: the middle of a fade, a repair that is silent still, another switch.
TEST_P(FormatBypass, ThatNobodyCanKeepUpWithLeavesASineAloneAndSpeechWithoutAStep)
{
    if (!IsSoft()) {
        GTEST_SKIP() << "the entry switches hard";
    }
    auto host = MakeStrong();
    const Audio sine = MakeSine(10);
    const Audio speech = MakeSpeech(Rate, 2, 10);
    const uint32_t lengths[] = {1, 100, 470, 480, 700, 20'000, 17'000};
    for (const Audio* const input : {&sine, &speech}) {
        std::mt19937 engine(1);
        bool isOn = false;
        // What little a repair does to the sine where it begins is taken out of the comparison.
        host->SetParameter(TestHost::Strength, input == &sine ? 0.0F : 1.0F);
        Settle(*host, 2);
        const Audio output = Play(*host, *input, [&] {
            SetBypass(*host, isOn = !isOn);
            return 1 + static_cast<uint32_t>(engine()) % lengths[engine() % 7];
        });
        const Audio late = Delayed(*input, host->GetLatency());
        EXPECT_LT(LargestStep(output), LargestStep(late) * 1.1F);
        if (input == &sine) {
            EXPECT_LT(LargestError(output, late), 1e-5F);
        }
    }
}

TEST_P(FormatBypass, OfASessionComesAndGoesWithoutAStep)
{
    auto host = MakeStrong();
    SetBypass(*host, true);
    PlaySilence(*host, 2, 64);
    const std::vector<uint8_t> bypassed = host->Save();
    SetBypass(*host, false);
    PlaySilence(*host, 2, 64);
    const std::vector<uint8_t> repairing = host->Save();
    if (!IsSoft() || bypassed == repairing) {
        GTEST_SKIP() << "the entry switches hard, and other hosts keep the bypass themselves";
    }
    const Audio speech = MakeSpeech(Rate, 2, 2.0);
    host->Reset();
    uint32_t number = 0;
    const Audio output = Play(*host, speech, [&] {
        if (++number % 50 == 0) {
            EXPECT_TRUE(host->Load(number % 100 == 0 ? repairing : bypassed));
        }
        return 512U;
    });
    const Audio late = Delayed(speech, host->GetLatency());
    EXPECT_LT(LargestStep(output), LargestStep(late) * 1.1F);
    EXPECT_EQ(Difference(output, late, 50 * 512 + FadeFrames, 100 * 512), "");
}

TEST_P(FormatBypass, CostsLittle)
{
    auto host = Make();
    const Audio speech = MakeSpeech(Rate, 2, 2.0);
    const auto timeOf = [&](bool isOn) {
        SetBypass(*host, isOn);
        Settle(*host, 2);
        const std::clock_t begin = std::clock();
        Play(*host, speech, 512);
        return std::clock() - begin;
    };
    const std::clock_t repair = timeOf(false);
    EXPECT_LT(timeOf(true), repair / 4);
}

CONTRACT_FORMATS(FormatBypass);
