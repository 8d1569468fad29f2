// SPDX-License-Identifier: ISC
// Audio through the entry and every format, bit for bit: whatever the rate, the channels and the
// blocks, and whatever the samples.
#include "tests/contract/support/FormatTest.h"

#include <random>

namespace {

using namespace Contract;

class FormatAudio : public FormatTest {};

// Those that validators of hosts try.
constexpr double Rates[] = {
    22050, 44100, 88200, 192000, 384000, 768000, 1234.5678, 45678.901, 123456.78, 1234567.8};

constexpr uint32_t Blocks[] = {
    1, 10, 17, 64, 256, 1024, 1536, 2027, 4096, 8192, 8193, 16384, 65536};

uint32_t LatencyAt(double rate)
{
    TestHost::Instance instance(static_cast<float>(rate), 1);
    return instance.Latency();
}

} // namespace

TEST_P(FormatAudio, IsTheModulesForAnyBlocks)
{
    for (const uint32_t channels : {1U, 2U, 6U, 8U}) {
        const Audio input = MakeSpeech(Rate, channels);
        const Audio expected = Expected(input, Rate);
        const float repaired = LargestError(expected, Delayed(input, LatencyAt(Rate)));
        ASSERT_GT(repaired, 0.01F) << "nothing to tell the repair by";
        ASSERT_EQ(BadSample(expected), "");
        for (size_t i = 0; i < std::size(Blocks); i += IsSanitized ? 5 : 1) {
            auto host = Make(Rate, channels);
            EXPECT_EQ(Difference(Play(*host, input, Blocks[i]), expected), "")
                << channels << " channels, blocks of " << Blocks[i];
        }
        std::mt19937 engine(channels);
        auto host = Make(Rate, channels);
        const Audio output = Play(*host, input, [&] {
            host->Process(nullptr, nullptr, 0);
            return static_cast<uint32_t>(1 + engine() % 3000);
        });
        EXPECT_EQ(Difference(output, expected), "") << channels << " channels, random blocks";
    }
}

TEST_P(FormatAudio, IsTheModulesAtAnyRate)
{
    uint32_t turn = 0;
    for (const double rate : Rates) {
        if (IsSanitized && rate > 200'000) {
            continue; // minutes
        }
        const uint32_t channels = 1 + turn % 2;
        const uint32_t block = Blocks[(2 + turn++) % std::size(Blocks)];
        const Audio input = MakeSpeech(rate, channels);
        const Audio expected = Expected(input, rate);
        ASSERT_EQ(BadSample(expected), "") << rate;
        auto host = Make(rate, channels);
        EXPECT_EQ(Difference(Play(*host, input, block), expected), "")
            << rate << " Hz, blocks of " << block;
    }
}

CONTRACT_FORMATS(FormatAudio);
