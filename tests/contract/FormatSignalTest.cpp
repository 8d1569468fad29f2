// SPDX-License-Identifier: ISC
// Odd samples, missing channels, and hosts that leave out a step: what comes out stays audio, and
// nothing of it is left after a reset.
#include "tests/contract/support/FormatTest.h"

#include <cmath>
#include <limits>

namespace {

using namespace Contract;
using TestHost::GlobalBypass;

class FormatSignal : public FormatTest {
protected:
    static void ExpectLikeNew(FormatHost& host, double rate = Rate)
    {
        const Audio speech = MakeSpeech(rate, 2);
        host.Reset();
        EXPECT_EQ(Difference(Play(host, speech, 700), Expected(speech, rate)), "");
    }
};

} // namespace

TEST_P(FormatSignal, OfSilenceIsSilence)
{
    for (const uint32_t channels : {1U, 2U, 6U, 8U}) {
        auto host = Make(Rate, channels);
        const Audio silence(channels, std::vector<float>(40'000));
        EXPECT_EQ(Difference(Play(*host, silence, 777), silence), "") << channels;
    }
}

TEST_P(FormatSignal, ThatIsOddStaysAudioAndIsForgottenByAReset)
{
    constexpr float Inf = std::numeric_limits<float>::infinity();
    auto host = Make();
    for (const float level : {std::numeric_limits<float>::denorm_min(),
                              1e-39F,
                              1.0F,
                              1e6F,
                              1e30F,
                              std::numeric_limits<float>::max(),
                              Inf,
                              std::numeric_limits<float>::quiet_NaN()}) {
        for (const bool isSteady : {true, false}) {
            SCOPED_TRACE(testing::Message() << level << (isSteady ? ", steady" : ", alternating"));
            Audio odd(2, std::vector<float>(40'000, level));
            for (size_t i = 0; i < odd[0].size() && !isSteady; i += 2 + i % 50) {
                odd[0][i] = -level;
            }
            const Audio output = Play(*host, odd, 512);
            for (const auto& channel : output) {
                for (const float sample : channel) {
                    ASSERT_TRUE(std::isfinite(sample)) << sample;
                }
            }
            ExpectLikeNew(*host);
        }
    }
}

TEST_P(FormatSignal, MayShareMemoryInAnyWayOrLackChannels)
{
    constexpr size_t None = 3;
    // Which memory each of two channels uses.
    const struct {
        const char* name;
        size_t inputs[2];
        size_t outputs[2];
    } wirings[] = {
        {"crossed", {0, 1}, {1, 0}},
        {"shifted", {0, 1}, {1, 2}},
        {"one input twice", {0, 0}, {0, 1}},
        {"one output twice", {0, 1}, {2, 2}},
        {"an input missing", {None, 1}, {0, 1}},
        {"an output missing", {0, 1}, {None, 1}},
        {"the second missing", {0, None}, {0, None}},
        {"all missing", {None, None}, {None, None}},
    };
    auto host = Make(); // one for all: what is left of one must not show in another
    const Audio speech = MakeSpeech(Rate, 3);
    const auto frames = static_cast<uint32_t>(speech[0].size());
    for (const bool isBypassed : {false, true}) {
        host->SetParameter(GlobalBypass, isBypassed ? 1.0F : 0.0F);
        Settle(*host, 2);
        for (const auto& [name, inputs, outputs] : wirings) {
            SCOPED_TRACE(testing::Message() << name << (isBypassed ? ", bypassed" : ""));
            Audio memory = speech;
            Audio input;
            const float* from[2];
            float* to[2];
            for (size_t c = 0; c < 2; ++c) {
                input.push_back(inputs[c] == None ? std::vector<float>(frames) : speech[inputs[c]]);
                from[c] = inputs[c] == None ? nullptr : memory[inputs[c]].data();
                to[c] = outputs[c] == None ? nullptr : memory[outputs[c]].data();
            }
            const Audio expected =
                isBypassed ? Delayed(input, host->GetLatency()) : Expected(input, Rate);
            host->Reset();
            host->Process(from, to, frames);
            if (outputs[1] != None) {
                EXPECT_EQ(memory[outputs[1]], expected[1]) << "the second has the last word";
            }
            if (outputs[0] != None && outputs[0] != outputs[1]) {
                EXPECT_EQ(memory[outputs[0]], expected[0]);
            }
        }
    }
}

TEST_P(FormatSignal, GoesOnAtAnotherRateWithoutAWordBefore)
{
    auto host = Make();
    double rate = Rate;
    for (const double next : {96000.0, 8000.0, 44100.0, 0.0, -1.0, std::nan(""), 1e300}) {
        SCOPED_TRACE(next);
        Play(*host, MakeSpeech(rate, 2, 0.2), 700);
        if (host->Activate(next, LongestBlock)) {
            ASSERT_TRUE(next >= 8000 && next < 1e300) << "nothing runs at this rate";
            rate = next;
        }
        ExpectLikeNew(*host, rate);
    }
}

CONTRACT_FORMATS(FormatSignal);
