// SPDX-License-Identifier: ISC
// What a host calls on its audio thread, in every format, wrapper and module together, keeps off
// the heap and the system, and takes no lock but the stated ones: whatever it sends or loads
// between the blocks.
#include "tests/contract/support/AudioCall.h"
#include "tests/contract/support/FormatTest.h"
#include "tests/realtime/Clean.h"

#include <limits>
#include <random>
#include <utility>

namespace {

using namespace Contract;

/// Watches each call of a plug-in on the audio thread while it lives. The first that isn't clean
/// fails the test.
class CallWatch {
public:
    CallWatch()
    {
        static constexpr AudioCallWatcher Watcher = {[] { watch.emplace(); }, End};
        calls = 0;
        audioCallWatcher = &Watcher;
    }
    ~CallWatch() { audioCallWatcher = nullptr; }
    CallWatch(const CallWatch&) = delete;
    CallWatch& operator=(const CallWatch&) = delete;

    static uint32_t Count() { return calls; }

private:
    static void End()
    {
        const Probe::Report report = watch->Stop();
        ++calls;
        if (!testing::Test::HasFailure()) {
            Realtime::ExpectClean(report, "call " + std::to_string(calls));
        }
    }

    static inline std::optional<Probe::Watch> watch;
    static inline uint32_t calls = 0;
};

class FormatRealtime : public FormatTest {
protected:
    // Speech with bad samples in blocks of up to `longest` frames, with `between` before each, all
    // of it watched.
    static void PlayWatched(FormatHost& host,
                            Audio speech,
                            uint32_t longest,
                            const std::function<void(uint32_t)>& between)
    {
        for (size_t i = 0; i < speech[0].size(); i += 1000) {
            speech[0][i] = std::numeric_limits<float>::quiet_NaN();
        }
        std::mt19937 engine(1);
        const CallWatch watch;
        uint32_t number = 0;
        Play(host, speech, [&] {
            between(number++);
            return static_cast<uint32_t>(1 + engine() % longest);
        });
        EXPECT_GE(CallWatch::Count(), number) << "the host tells of its calls";
    }
};

constexpr struct {
    double rate;
    uint32_t channels;
    uint32_t longestBlock;
} Variety[] = {{48000, 2, 8}, {8000, 1, 300}, {48000, 2, 20'000}, {44100, 8, 1000}};

} // namespace

TEST_P(FormatRealtime, WhileEveryControlMovesAndTheBypassComesAndGoes)
{
    for (const auto& [rate, channels, longest] : Variety) {
        SCOPED_TRACE(testing::Message() << rate << " Hz, " << channels << " channels");
        auto host = Make(rate, channels);
        const uint32_t every = longest < 100 ? 50 : 1;
        PlayWatched(*host, MakeSpeech(rate, channels), longest, [&](uint32_t number) {
            if (number % every != 0) {
                return;
            }
            const uint32_t step = number / every;
            for (uint32_t index = 0; index < 3; ++index) {
                host->SetParameter(index, static_cast<float>((step + index) % 9) / 8);
            }
            if (step % 7 == 3) {
                host->SetParameter(TestHost::GlobalBypass, static_cast<float>(step / 7 % 2));
            }
        });
    }
}

TEST_P(FormatRealtime, AfterAStateThatChangesTheLatencyToo)
{
    auto host = Make();
    const auto shortest = host->MakeSession(MakeShortestState());
    const std::vector<uint8_t> longest = host->Save();
    PlayWatched(*host, MakeSpeech(Rate, 2), 500, [&](uint32_t number) {
        if (number % 20 == 10) {
            ASSERT_TRUE(host->Load(number % 40 == 10 ? shortest : longest));
            host->Idle();
        }
    });
}

TEST_P(FormatRealtime, WithNoFramesWithChannelsMissingOrCrossedAndAfterAReset)
{
    for (const auto& [rate, channels, longest] : Variety) {
        auto host = Make(rate, channels);
        std::vector<float> left(512, 0.25F);
        const float* inputs[8] = {left.data()};
        float* outputs[8] = {left.data()};
        float* none[8] = {};
        PlayWatched(*host, MakeSpeech(rate, channels), 1000, [&](uint32_t number) {
            host->SetParameter(TestHost::Strength, static_cast<float>(number % 9) / 8);
            if (number % 3 == 0) {
                host->Process(nullptr, nullptr, 0);
            } else if (number % 3 == 1) {
                std::swap(outputs[0], outputs[1]); // one channel's output in another's input
                host->Process(inputs, number % 2 == 0 ? outputs : none, 512);
            } else {
                host->Reset();
            }
        });
    }
}

CONTRACT_FORMATS(FormatRealtime);
