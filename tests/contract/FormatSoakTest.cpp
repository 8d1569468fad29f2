// SPDX-License-Identifier: ISC
// Random everything that a host may do, in any order, through every format. A failure shows its
// seed and the last steps; PUFFGUARD_SOAK_SEED gives the same steps again, and
// PUFFGUARD_SOAK_SECONDS goes on with further seeds for so long.
#include "tests/contract/support/FormatTest.h"

#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <limits>
#include <random>
#include <sstream>

namespace {

using namespace Contract;
using Clock = std::chrono::steady_clock;

constexpr uint32_t StepsPerSeed = 400;
constexpr size_t StepsShown = 30;
constexpr uint32_t SeedsByDefault = 3;

class Soak {
public:
    Soak(const Format& newFormat, uint32_t newSeed)
        : format(newFormat)
        , seed(newSeed)
        , engine(newSeed)
    {
        MakeAnother();
    }

    void DoStep()
    {
        const struct {
            const char* name;
            std::function<void()> act;
        } steps[] = {
            {"value",
             [this] { host->SetParameter(Pick(4), static_cast<float>(Pick(1001)) / 1000); }},
            {"odd value", [this] { host->SetParameter(Pick(4), OddNumber()); }},
            {"reset", [this] { host->Reset(); }},
            {"save", [this] { saved = host->Save(); }},
            {"load", [this] { EXPECT_TRUE(saved.empty() || host->Load(saved)) << Tell(); }},
            {"load rubbish", [this] { LoadRubbish(); }},
            {"activate", [this] { Activate(); }},
            {"deactivate",
             [this] {
                 isActive = false;
                 host->Deactivate();
             }},
            {"no frames", [this] { host->Process(nullptr, nullptr, 0); }},
            {"look", [this] { Look(); }},
        };
        const uint32_t step = Pick(16);
        if (step < std::size(steps)) {
            Note(steps[step].name);
            steps[step].act();
        } else if (step > std::size(steps)) {
            PlayAnything();
        } else if (Pick(8) == 0) {
            Note("another");
            MakeAnother();
        }
    }

    void ExpectWorkingOrder()
    {
        host->Deactivate();
        ASSERT_TRUE(host->Activate(rate, LongestBlock)) << Tell();
        PlaySilence(*host, channels, 64); // values that wait for a block go in before the state
        const auto plain = MakeState([](TestHost::Instance&) {});
        EXPECT_TRUE(host->Load(host->MakeSession(plain))) << Tell();
        PlaySilence(*host, channels, 10'000);
        host->Deactivate();
        host->Activate(rate, LongestBlock);
        Settle(*host, channels);
        const Audio speech = MakeSpeech(rate, channels);
        EXPECT_EQ(Difference(Play(*host, speech, 512), Expected(speech, rate)), "") << Tell();
    }

    std::string Tell() const
    {
        std::ostringstream text;
        text << format.name << ", seed " << seed << ", " << count << " steps, the last:";
        for (const std::string& step : log) {
            text << "\n  " << step;
        }
        return text.str();
    }

private:
    static constexpr uint32_t LongestBlock = 10'000;

    uint32_t Pick(uint32_t choices) { return static_cast<uint32_t>(engine() % choices); }

    void Note(const std::string& step)
    {
        ++count;
        log.push_back(step);
        if (log.size() > StepsShown) {
            log.pop_front();
        }
    }

    float OddNumber()
    {
        constexpr float Inf = std::numeric_limits<float>::infinity();
        constexpr float NaN = std::numeric_limits<float>::quiet_NaN();
        constexpr float Numbers[] = {NaN, Inf, -Inf, 1e38F, -1e10F, -0.0F, 1e-40F, -1.0F, 2.0F};
        return Numbers[Pick(std::size(Numbers))];
    }

    void MakeAnother()
    {
        constexpr uint32_t Layouts[] = {1, 2, 6, 8};
        constexpr double Rates[] = {8000, 22050, 44100, 48000, 96000, 12345.678};
        channels = Layouts[Pick(std::size(Layouts))];
        rate = Rates[Pick(std::size(Rates))];
        host = format.make(rate, channels);
        isActive = Pick(4) > 0 && host->Activate(rate, LongestBlock);
    }

    void Activate()
    {
        constexpr double Rates[] = {8000, 44100, 48000, 96000};
        const double next = Rates[Pick(std::size(Rates))];
        if (host->Activate(next, LongestBlock)) {
            rate = next;
            isActive = true;
        }
    }

    void LoadRubbish()
    {
        std::vector<uint8_t> rubbish = saved;
        rubbish.resize(Pick(2000));
        for (uint8_t& byte : rubbish) {
            byte ^= Pick(16) == 0 ? static_cast<uint8_t>(engine()) : uint8_t{0};
        }
        host->Load(rubbish);
    }

    void Look()
    {
        host->GetLatency();
        if (const std::optional<float> value = host->GetParameter(Pick(4))) {
            EXPECT_TRUE(*value >= 0 && *value <= 1) << *value << '\n' << Tell();
        }
        host->Idle();
    }

    void PlayAnything()
    {
        const uint32_t frames = 1 + (Pick(8) == 0 ? Pick(LongestBlock) : Pick(1024));
        const uint32_t block = 1 + Pick(frames);
        Note(std::to_string(frames) + " frames in blocks of " + std::to_string(block));
        Audio audio(channels, std::vector<float>(frames));
        for (auto& channel : audio) {
            const float gain = Pick(4) == 0 ? 0.0F : static_cast<float>(Pick(100)) / 50;
            for (float& sample : channel) {
                sample = gain * (static_cast<float>(Pick(2001)) / 1000 - 1);
            }
            if (Pick(8) == 0) {
                channel[Pick(frames)] = OddNumber();
            }
        }
        // A plug-in that isn't active may leave the host's own samples where they are.
        for (const auto& channel : Play(*host, audio, block)) {
            for (const float sample : channel) {
                ASSERT_TRUE(std::isfinite(sample) || !isActive) << sample << '\n' << Tell();
            }
        }
    }

    const Format& format;
    const uint32_t seed;
    std::mt19937 engine;
    std::unique_ptr<FormatHost> host;
    bool isActive = false;
    double rate = 0;
    uint32_t channels = 0;
    std::vector<uint8_t> saved;
    std::deque<std::string> log;
    uint32_t count = 0;
};

uint32_t NumberFrom(const char* variable, uint32_t otherwise)
{
    const char* const text = std::getenv(variable);
    return text != nullptr ? static_cast<uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

class FormatSoak : public FormatTest {};

} // namespace

TEST_P(FormatSoak, AnyCallsLeaveItInWorkingOrder)
{
    const auto end = Clock::now() + std::chrono::seconds(NumberFrom("PUFFGUARD_SOAK_SECONDS", 0));
    const uint32_t first = NumberFrom("PUFFGUARD_SOAK_SEED", 1);
    for (uint32_t seed = first; !HasFailure(); ++seed) {
        if (seed >= first + Rounds(SeedsByDefault) && Clock::now() >= end) {
            return;
        }
        // A crash tells nothing itself.
        std::fprintf(stderr, "%s, seed %u\n", GetParam().name, seed);
        Soak soak(GetParam(), seed);
        for (uint32_t step = 0; step < StepsPerSeed && !HasFailure(); ++step) {
            soak.DoStep();
        }
        soak.ExpectWorkingOrder();
    }
}

CONTRACT_FORMATS(FormatSoak);
