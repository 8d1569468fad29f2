// SPDX-License-Identifier: ISC
// Calls of the entry in an order that no host should choose, and more of them than it would make.
#include "tests/contract/support/Takes.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <random>
#include <thread>

namespace {

using namespace TestHost;
using namespace Contract;

/// Makes an instance of one channel and nothing more; for its caller to end.
PluginCore* Create()
{
    PluginCore* instance = nullptr;
    CreateRecord record{};
    std::strcpy(&record.modulePath[0], PUFFGUARD_MODULE);
    record.instance = &instance;
    record.sampleRate = 48000;
    EXPECT_EQ(Call(SelectorCreatePlugin, UI, nullptr, &record), PluginCoreSuccess);
    return instance;
}

uint32_t Ask(PluginCore* instance, uint32_t selector)
{
    return Call(selector, UI, instance, nullptr);
}

/// Whether what the UI side sets is in force at once, as it is while no audio runs. Else it waits
/// for a block.
bool ActsAtOnce(Instance& instance)
{
    const auto isUsed = [&](float value) {
        return value == instance.Value(Strength, Process) || value == instance.Value(Strength, UI);
    };
    float other = 0.25F; // neither what is in force nor what waits, which wouldn't be set again
    while (isUsed(other)) {
        other += 0.25F;
    }
    instance.Set(Strength, other);
    return instance.Value(Strength, Process) == other;
}

} // namespace

TEST(Order, NoTimerTicksForAnInstanceBeforeItIsInitialized)
{
    PluginCore* const instance = Create();
    const auto valueOf = [&](uint32_t context) {
        ParamValueRecord record = {Strength, 0};
        Call(SelectorGetAutomatableParamValue, context, instance, &record);
        return record.value;
    };
    ParamValueRecord record = {Strength, 0.75F};
    Call(SelectorSetAutomatableParamValue, Process, instance, &record);
    std::this_thread::sleep_for(std::chrono::milliseconds(350)); // three ticks
    EXPECT_EQ(valueOf(UI), 0.5F);
    EXPECT_EQ(Ask(instance, SelectorInitialize), PluginCoreSuccess);
    while (valueOf(UI) != 0.75F) { // ends by the test's time limit when no tick comes
        std::this_thread::yield();
    }
    EXPECT_EQ(Ask(instance, SelectorDestroyPlugin), PluginCoreSuccess);
}

TEST(Order, AudioHoldsWhatTheUISideSetsFor2500Milliseconds)
{
    using Clock = std::chrono::steady_clock;
    using std::chrono::milliseconds;
    constexpr milliseconds Hold(2500);
    Instance instance(48000.0F, 1);
    EXPECT_TRUE(ActsAtOnce(instance));
    Audio audio(1, std::vector<float>(64));
    const Clock::time_point begin = Clock::now();
    instance.RunBlock(audio, 0, 64);
    const Clock::time_point end = Clock::now();
    std::this_thread::sleep_until(begin + Hold - milliseconds(100));
    const bool isFree = ActsAtOnce(instance);
    EXPECT_TRUE(!isFree || Clock::now() - begin > Hold - milliseconds(2)); // a busy machine
    std::this_thread::sleep_until(end + Hold + milliseconds(2));
    EXPECT_TRUE(ActsAtOnce(instance));
}

TEST(Order, ASidePassCountsAsAudioUnlessItHasNoFrames)
{
    Instance instance(48000.0F, 1);
    SidePassRecord record{};
    EXPECT_EQ(Call(SelectorProcessSidePass, Process, instance.Get(), &record), PluginCoreSuccess);
    EXPECT_TRUE(ActsAtOnce(instance));
    record.frames = 1;
    EXPECT_EQ(Call(SelectorProcessSidePass, Process, instance.Get(), &record), PluginCoreSuccess);
    EXPECT_FALSE(ActsAtOnce(instance));
}

TEST(Order, OnlyActiveWithoutHoldForgetsTheSignalAndOnlyNeitherEndsTheAudio)
{
    const Audio speech = MakeSpeech(48000, 1, 0.5);
    Audio twice = speech;
    twice[0].insert(twice[0].end(), speech[0].begin(), speech[0].end());
    const Audio anew = Expected(speech, 48000);
    const Audio goneOn = Expected(twice, 48000);
    const auto half = static_cast<uint32_t>(speech[0].size());
    for (const ProcessingStateRecord state :
         {ProcessingStateRecord{0, 0}, {0, 1}, {1, 0}, {1, 1}}) {
        for (const uint32_t context : {Process, UI}) {
            SCOPED_TRACE(testing::Message() << state.active << state.hold << ", side " << context);
            Instance instance(48000.0F, 1);
            Audio audio = twice;
            instance.RunBlock(audio, 0, half);
            ProcessingStateRecord record = state;
            Call(SelectorSetProcessingState, context, instance.Get(), &record);
            instance.RunBlock(audio, half, half);
            const bool isForgotten = state.active != 0 && state.hold == 0;
            const Audio rest = {{audio[0].begin() + half, audio[0].end()}};
            const Audio restGoneOn = {{goneOn[0].begin() + half, goneOn[0].end()}};
            EXPECT_EQ(Difference(rest, isForgotten ? anew : restGoneOn), "");
            Call(SelectorSetProcessingState, context, instance.Get(), &record);
            EXPECT_EQ(ActsAtOnce(instance), state.active == 0 && state.hold == 0);
        }
    }
}

TEST(Order, OfManyFormatsTheLastCountsAndInitializingAgainChangesNothing)
{
    Instance instance(44100.0F, 2);
    instance.Set(Strength, 0.75F);
    std::mt19937 engine(1);
    for (uint32_t round = 0; round < Rounds(200); ++round) {
        const auto layout = static_cast<uint32_t>(engine() % 42);
        const auto rate = static_cast<float>(8000 + engine() % 40'000);
        EXPECT_EQ(instance.SetFormat(rate, layout), PluginCoreSuccess);
        EXPECT_EQ(Ask(instance.Get(), SelectorInitialize), PluginCoreSuccess);
    }
    instance.SetFormat(48000.0F, LayoutOf(2));
    Audio audio = MakeSpeech(48000, 2);
    const Audio expected = Expected(audio, 48000, {0.5F, 0.75F});
    instance.Run(audio, 512);
    EXPECT_EQ(Difference(audio, expected), "");
}
