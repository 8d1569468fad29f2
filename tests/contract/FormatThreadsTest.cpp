// SPDX-License-Identifier: ISC
// The host's two threads at once in every format. Most of what these find they find under the
// thread sanitizer.
#include "tests/contract/support/FormatTest.h"

#include <atomic>
#include <functional>
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
        std::atomic<uint32_t> played{0};
        std::atomic<bool> isDone{false};
        std::atomic<bool> isGood{true};
        std::thread audio([&] {
            std::mt19937 engine(2);
            const Audio speech = MakeSpeech(Rate, 2, 0.1);
            for (uint32_t number = 0; number < blocks; ++number) {
                const auto frames = static_cast<uint32_t>(1 + engine() % longest);
                Audio block(2);
                for (size_t c = 0; c < 2; ++c) {
                    const auto begin = speech[c].begin() + static_cast<long>(engine() % 500);
                    block[c].assign(begin, begin + frames);
                }
                isGood = isGood && BadSample(Play(host, block, frames)).empty();
                ++played;
            }
            isDone = true;
        });
        for (uint32_t turn = 0; !isDone; ++turn) {
            const uint32_t before = played;
            act(turn);
            while (turns == Turns::OnePerBlock && played == before && !isDone) {
                std::this_thread::yield();
            }
        }
        audio.join();
        EXPECT_TRUE(isGood);
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
