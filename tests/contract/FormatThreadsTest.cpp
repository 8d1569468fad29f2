// SPDX-License-Identifier: ISC
// The host's two threads at once in every format. Most of what these find they find under the
// thread sanitizer.
#include "tests/contract/support/FormatTest.h"
#include "tests/support/AudioThread.h"

#include <random>
#include <thread>

namespace {

using namespace Contract;

class FormatThreads : public FormatTest {
protected:
    // Calls `act` while another thread moves `blocks` blocks of up to `longest` frames: over and
    // over, or once a block, for what keeps the audio waiting.
    enum class Turns { Free, OnePerBlock };
    static void Storm(FormatHost& host,
                      uint32_t blocks,
                      uint32_t longest,
                      Turns turns,
                      const std::function<void(uint32_t)>& act)
    {
        const Audio speech = MakeSpeech(Rate, 2, 0.1);
        const Support::AudioThread audio([&, engine = std::mt19937(2)]() mutable {
            const auto frames = static_cast<uint32_t>(1 + engine() % longest);
            Audio block;
            for (const auto& channel : speech) {
                const auto begin = channel.begin() + static_cast<long>(engine() % 500);
                block.emplace_back(begin, begin + frames);
            }
            return BadSample(Play(host, block, frames)).empty();
        });
        for (uint32_t turn = 0; audio.CountBlocks() < blocks; ++turn) {
            act(turn);
            if (turns == Turns::OnePerBlock) {
                audio.WaitForBlocks(1);
            }
        }
        EXPECT_TRUE(audio.SawOnlyGoodAudio());
    }
};

} // namespace

TEST_P(FormatThreads, SetEveryParameterWhileAudioRuns)
{
    auto host = Make();
    std::mt19937 engine(1);
    Storm(*host, Rounds(5000), 32, Turns::Free, [&](uint32_t turn) {
        host->SetParameter(turn % 4, static_cast<float>(engine() % 9) / 8);
        if (turn % 64 == 0) {
            host->GetParameter(turn / 64 % 4);
            host->GetLatency();
        }
        if (turn % 16 == 0) {
            std::this_thread::yield();
        }
    });
    ExpectControlled(*host);
}

TEST_P(FormatThreads, SaveAndLoadWhileAudioRuns)
{
    auto host = Make();
    const auto shortest = host->MakeSession(MakeShortestState());
    const auto longest = host->MakeSession(
        MakeState([](TestHost::Instance& instance) { instance.Set(TestHost::Strength, 0.875F); }));
    Storm(*host, Rounds(1000), 3000, Turns::OnePerBlock, [&](uint32_t turn) {
        EXPECT_FALSE(host->Save().empty());
        EXPECT_TRUE(host->Load(turn % 2 == 0 ? shortest : longest));
        host->SetParameter(TestHost::Strength, 0.5F);
        host->GetLatency();
        host->Idle();
    });
    ASSERT_TRUE(host->Load(longest));
    PlaySilence(*host, 2, 10'000);
    host->Deactivate(); // the latency may be another one than before
    ASSERT_TRUE(host->Activate(Rate, LongestBlock));
    ExpectControlled(*host);
}

CONTRACT_FORMATS(FormatThreads);
