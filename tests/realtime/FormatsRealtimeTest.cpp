// SPDX-License-Identifier: ISC
// The process call of every format, wrapper and module together, keeps off the heap and the system,
// and takes no lock but the stated ones: whatever the host sends or loads between the blocks.
#include "tests/contract/support/AudioCall.h"
#include "tests/contract/support/Formats.h"
#include "tests/contract/support/Takes.h"
#include "tests/realtime/Clean.h"

#include <gtest/gtest.h>

#include <optional>
#include <random>

namespace {

using namespace Contract;

/// Watches each call of a plug-in while it lives.
class CallWatch {
public:
    CallWatch()
    {
        static constexpr AudioCallWatcher watcher = {[] { watch.emplace(); },
                                                     [] {
                                                         report = watch->Stop();
                                                         ++calls;
                                                     }};
        calls = 0;
        audioCallWatcher = &watcher;
    }
    ~CallWatch() { audioCallWatcher = nullptr; }
    CallWatch(const CallWatch&) = delete;
    CallWatch& operator=(const CallWatch&) = delete;

    static uint32_t Count() { return calls; }
    /// Of the last call.
    static const Probe::Report& Last() { return report; }

private:
    static inline std::optional<Probe::Watch> watch;
    static inline Probe::Report report;
    static inline uint32_t calls = 0;
};

class FormatRealtime : public testing::TestWithParam<Format> {
protected:
    static constexpr double rate = 48000;

    void SetUp() override
    {
        host = GetParam().make(rate, channels);
        ASSERT_NE(host, nullptr);
        ASSERT_TRUE(host->Activate(rate, 20'000));
    }

    // Speech in blocks of up to `longest` frames, each watched, with `between` before it.
    void PlayWatched(uint32_t longest, const std::function<void(uint32_t)>& between)
    {
        const Audio speech = MakeSpeech(rate, channels);
        std::mt19937 engine(1);
        const CallWatch watch;
        uint32_t number = 0;
        Play(*host, speech, [&] {
            ExpectLastClean(number);
            between(number++);
            return static_cast<uint32_t>(1 + engine() % longest);
        });
        ExpectLastClean(number);
        EXPECT_GE(CallWatch::Count(), number) << "the host tells of its calls";
    }

    static constexpr uint32_t channels = 2;
    std::unique_ptr<FormatHost> host;

private:
    static void ExpectLastClean(uint32_t number)
    {
        if (CallWatch::Count() > 0 && !HasFailure()) {
            Realtime::ExpectClean(CallWatch::Last(), "before block " + std::to_string(number));
        }
    }
};

} // namespace

TEST_P(FormatRealtime, WhileEveryControlMovesAndTheBypassComesAndGoes)
{
    for (const uint32_t longest : {8U, 300U, 20'000U}) {
        const uint32_t every = longest < 100 ? 50 : 1;
        PlayWatched(longest, [&](uint32_t number) {
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
    const auto shortest = host->MakeSession(MakeState([](TestHost::Instance& instance) {
        instance.SetElement(TestHost::ElementLatencyScaling, 0.0F);
    }));
    const std::vector<uint8_t> longest = host->Save();
    PlayWatched(500, [&](uint32_t number) {
        if (number % 20 == 10) {
            ASSERT_TRUE(host->Load(number % 40 == 10 ? shortest : longest));
            host->Idle();
        }
    });
}

TEST_P(FormatRealtime, WithNoFramesAndWithChannelsMissing)
{
    std::vector<float> left(512, 0.25F);
    const float* inputs[channels] = {left.data(), nullptr};
    float* outputs[channels] = {left.data(), nullptr};
    PlayWatched(1000, [&](uint32_t number) {
        host->SetParameter(TestHost::Strength, static_cast<float>(number % 9) / 8);
        if (number % 2 == 0) {
            host->Process(nullptr, nullptr, 0);
        } else {
            host->Process(inputs, outputs, 512);
        }
        Realtime::ExpectClean(CallWatch::Last(), "block " + std::to_string(number));
    });
}

INSTANTIATE_TEST_SUITE_P(Formats,
                         FormatRealtime,
                         testing::ValuesIn(GetFormats()),
                         Contract::NameOf<testing::TestParamInfo<Format>>);
