// SPDX-License-Identifier: ISC
// The processing side of the built module keeps off the heap and the system, and takes no lock but
// the stated ones, from its first block on.
#include "tests/realtime/Clean.h"
#include "tests/realtime/Probe.h"
#include "tests/support/ModuleHost.h"

#include "frameworks/qobase/util/CriticalSection.h"

#include <gtest/gtest.h>

#include <dlfcn.h>

#include <algorithm>
#include <utility>

namespace {

using namespace Realtime;
using namespace TestHost;

/// Runs all of `audio` under the probe. Returns the most locks that a block has taken.
uint32_t RunWatched(Instance& instance, Audio& audio, uint32_t block)
{
    uint32_t mostLocks = 0;
    const auto frames = static_cast<uint32_t>(audio[0].size());
    uint32_t number = 0;
    for (uint32_t done = 0; done < frames && !testing::Test::HasFailure(); ++number) {
        const uint32_t count = std::min(block, frames - done);
        Probe::Watch watch;
        instance.RunBlock(audio, done, count);
        const Probe::Report& report = watch.Stop(); // before the text below takes memory
        ExpectClean(report, "block " + std::to_string(number) + " of " + std::to_string(block));
        mostLocks = std::max(mostLocks, report.lockCalls);
        done += count;
    }
    return mostLocks;
}

/// Loads the misbehaving module once.
bool Misbehave(const char* name)
{
    static const auto Function = [] {
        void* module = dlopen(PUFFGUARD_CONTROL, RTLD_NOW | RTLD_LOCAL);
        return reinterpret_cast<bool (*)(const char*)>(dlsym(module, "Misbehave"));
    }();
    return Function(name);
}

Probe::Report WatchMisbehaviour(const char* name)
{
    Misbehave("nothing"); // loads it
    Probe::Watch watch;
    const bool known = Misbehave(name);
    const Probe::Report report = watch.Stop();
    EXPECT_TRUE(known) << name;
    return report;
}

TEST(Probe, SeesEachMisdeedInALoadedModuleAndNothingWhereNothingIs)
{
    const std::pair<const char*, std::array<uint32_t, 3>> misdeeds[] = {
        // Uses of the heap, waits, system calls.
        {"malloc", {1, 0, 0}},
        {"free", {1, 0, 0}},
        {"new", {1, 0, 0}},
        {"delete", {1, 0, 0}},
        {"aligned new", {1, 0, 0}},
        {"delete", {1, 0, 0}},
        {"notify", {0, 1, 0}},
        {"yield", {0, 0, 1}},
        {"write", {0, 0, 1}},
        {"nothing", {0, 0, 0}},
    };
    for (const auto& [name, expected] : misdeeds) {
        const Probe::Report report = WatchMisbehaviour(name);
        EXPECT_EQ(report.heapCalls, expected[0]) << name;
        EXPECT_EQ(report.waits, expected[1]) << name;
        if (report.heapCalls == 0 && Probe::CanSeeSystemCalls()) { // the heap may make some
            EXPECT_EQ(report.systemCalls, expected[2]) << name;
        }
        EXPECT_EQ(report.lockCalls, 0U) << name;
    }
}

TEST(Probe, SeesLocksAndTellsThePlainFromTheNamed)
{
    for (const char* what : {"lock", "try lock"}) {
        const Probe::Report report = WatchMisbehaviour(what);
        EXPECT_EQ(report.lockCalls, 1U) << what;
        ASSERT_EQ(report.lockCount, 1U) << what;
        EXPECT_FALSE(IsRecursive(report.locks[0])) << what;
    }
    Util::CriticalSection section("a name");
    Probe::Watch watch;
    section.Enter();
    section.Leave();
    const Probe::Report& report = watch.Stop();
    ASSERT_EQ(report.lockCount, 1U);
    EXPECT_TRUE(IsRecursive(report.locks[0]));
    EXPECT_EQ(NameOf(report.locks[0]), "a name");
    EXPECT_FALSE(IsStated(NameOf(report.locks[0])));
}

TEST(Probe, SeesTheLocksOfBothSidesOfTheModule)
{
    // A call of the UI side must count as unclean, or the other tests would prove nothing.
    Instance instance(44100.0F, 1);
    Probe::Watch watch;
    instance.Latency(UI);
    const Probe::Report& report = watch.Stop();
    ASSERT_GE(report.lockCount, 1U);
    EXPECT_EQ(NameOf(report.locks[0]), "PluginCore UI CritSec");
    EXPECT_FALSE(IsStated(NameOf(report.locks[0])));
}

TEST(Processing, IsCleanFromTheFirstBlockOn)
{
    for (const uint32_t block : {1U, 17U, 64U, 480U, 512U, 4096U, 8192U, 20'000U}) {
        Instance instance(44100.0F, 2);
        Audio audio = MakeSpeechLike(2, block == 1 ? 40'000 : 120'000, 44100.0F);
        // The processing lock, once around the block; nothing else that is locked has anything to
        // do.
        EXPECT_LE(RunWatched(instance, audio, block), 4U);
        EXPECT_GT(instance.Detections(), 0U);
    }
}

TEST(Processing, IsCleanRightAfterEveryChangeOfFormat)
{
    Instance instance(44100.0F, 1);
    for (const float rate : {8000.0F, 48000.0F, 192000.0F}) {
        for (const uint32_t channels : {1U, 6U, 24U}) {
            instance.SetFormat(rate, LayoutOf(channels));
            Audio audio = MakeSpeechLike(channels, 40'000, rate);
            RunWatched(instance, audio, 1000);
        }
    }
}

} // namespace
