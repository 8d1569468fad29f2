// SPDX-License-Identifier: ISC
// The instance with a signal path made for the test: how blocks are cut, when the format changes,
// and what the host is told.
#include "frameworks/plugincore/dispatch/Entry.h"
#include "tests/frameworks/plugincore/instance/PluginRig.h"

#include <cmath>
#include <future>
#include <limits>
#include <thread>

using namespace PluginRig;
using PluginTest = Fixture;

TEST_F(PluginTest, CutsALongBlockAndAdvancesThePosition)
{
    Box& box = Create();
    TransportRecord transport{};
    transport.position = 999.6;
    transport.isPositionValid = 1;
    std::vector<float> samples(20000);
    Process(samples, &transport);
    EXPECT_EQ(box.chunks, (std::vector<uint32_t>{8192, 8192, 3616}));
    EXPECT_EQ(box.positions, (std::vector<std::optional<int64_t>>{1000, 9192, 17384}));
    EXPECT_EQ(box.processPositions, (std::vector<uint64_t>{0, 8192, 16384}));
    EXPECT_EQ(transport.position, 999.6); // the caller's record stays
    EXPECT_EQ(plugin->GetTransportPosition(), std::nullopt) << "it is that of a block";
    EXPECT_FALSE(box.wasOnUIThread);
    EXPECT_TRUE(plugin->IsUIThread());

    Process(samples); // without a transport there is no position
    EXPECT_EQ(box.positions.back(), std::nullopt);
    EXPECT_FALSE(box.wasPositionless);
    Process(samples, &transport, 1);
    EXPECT_TRUE(box.wasPositionless);
    EXPECT_FALSE(plugin->IsPositionless());
    Settle();
    Process(samples);
    EXPECT_EQ(box.processPositions.back(), 16384U);

    factory.definition.maxBlockFrames = 1024;
    Box& other = Create();
    samples.resize(2100);
    Process(samples);
    EXPECT_EQ(other.chunks, (std::vector<uint32_t>{1024, 1024, 52}));
}

TEST_F(PluginTest, ReplacesNonFiniteSamplesBeforeAnyElementSeesThem)
{
    Create();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    std::vector<float> samples{1.0F, nan, infinity, -infinity, 1e30F, -2.0F};
    Process(samples);
    EXPECT_EQ(samples, (std::vector<float>{1.0F, 0.0F, 0.0F, 0.0F, 0.0F, -2.0F}));
}

TEST_F(PluginTest, NewFormatKeepsElementsAndValuesAndStartsSilent)
{
    Box& box = Create();
    Set(Late, 0.5F);
    std::vector<float> samples(300, 1.0F);
    Process(samples);
    plugin->SetStreamFormat(48000.0F, 1);
    EXPECT_EQ(&factory.transform->GetBox(), &box);
    EXPECT_EQ(box.GetChannelCount(), 2U);
    EXPECT_EQ(plugin->GetLatency(Side::Process), 50U);
    Set(Bypass, 1.0F);
    samples.assign(300, 0.0F);
    Process(samples); // nothing of the former audio is left in the dry lines
    EXPECT_EQ(samples, std::vector<float>(300, 0.0F));
}

// The host answers a new latency by a new layout while the block of the old one, or the parameter's
// own callback, is still on the stack.
TEST_F(PluginTest, DoesNotChangeItsFormatUnderARunningSignalPath)
{
    Box& box = Create();
    onLatencyChanged = [this] { plugin->SetStreamFormat(48000.0F, 1); };
    std::vector<float> samples(64);
    Process(samples);
    Set(Late, 0.5F); // waits in the ring
    Process(samples);
    EXPECT_EQ(plugin->GetLatency(Side::Process), 50U);
    EXPECT_EQ(box.GetChannelCount(), 1U);
    plugin->SetProcessingState(Side::UI, false, false);
    Set(Late, 0.25F); // runs at once
    EXPECT_EQ(box.GetChannelCount(), 1U);
    onLatencyChanged = nullptr;
    plugin->SetStreamFormat(48000.0F, 1);
    EXPECT_EQ(box.GetChannelCount(), 2U);
}

TEST_F(PluginTest, ACallFromWithinTheSignalPathDoesNotWaitForTheUISide)
{
    Box& box = Create();
    std::promise<void> held;
    std::promise<void> done;
    std::thread other([&] {
        const Util::CriticalSectionGuard guard(plugin->GetThreadController().GetUILock());
        held.set_value();
        done.get_future().wait();
    });
    held.get_future().wait();
    onLatencyChanged = [this] {
        StreamFormatRecord record{96000.0F, 1};
        for (const uint32_t selector : {SelectorSetStreamFormat, SelectorTerminate}) {
            DispatchEntryCall(factory, PLUGIN_CORE_MAGIC, selector, 0, plugin.get(), &record);
        }
    };
    Set(Late, 0.5F, Side::Process); // ends by the test's time limit when the call waits
    done.set_value();
    other.join();
    EXPECT_FALSE(calls.empty());
    EXPECT_EQ(box.GetChannelCount(), 1U);
}

TEST_F(PluginTest, StaysAsItWasWhenANewFormatFails)
{
    Box& box = Create();
    for (bool Box::*refusal : {&Box::refusesStereo, &Box::refusesStereoLate}) {
        box.*refusal = true;
        EXPECT_THROW(plugin->SetStreamFormat(96000.0F, 1), std::bad_alloc);
        EXPECT_EQ(box.GetSampleRate(), 48000.0F);
        EXPECT_EQ(box.GetChannelCount(), 1U);
        std::vector<float> samples = Impulse(10);
        Process(samples);
        EXPECT_EQ(PeakOf(samples), 0);
        box.*refusal = false;
    }
    plugin->SetStreamFormat(96000.0F, 1); // the same request again is heard
    EXPECT_EQ(box.GetChannelCount(), 2U);
}

TEST_F(PluginTest, FallsBackWhenItIsCreatedForAFormatThatCannotBe)
{
    for (const float rate : {-1.0F, 0.0F, std::nanf(""), HUGE_VALF}) {
        const Box& box = Create(rate, 35);
        EXPECT_EQ(box.GetSampleRate(), 44100.0F);
        EXPECT_EQ(box.GetChannelCount(), 1U);
    }
}

// The process side has moved on to 0.2; setting the UI side's stale 0.5 again must not be lost.
TEST_F(PluginTest, SettingAnEqualButStaleValueStillArrives)
{
    Create();
    Set(Late, 0.5F);
    Set(Late, 0.2F, Side::Process);
    Set(Late, 0.5F);
    EXPECT_EQ(Get(Late), 0.5F);
}

// Two formats keep the sides apart by themselves.
TEST_F(PluginTest, KnowsWhoMayChangeTheSignalPath)
{
    for (format = FormatStandalone; format <= FormatVST3; ++format) {
        SCOPED_TRACE(format);
        Create();
        EXPECT_TRUE(plugin->MayChangeDSP()); // nothing runs
        std::thread audio([&] {
            std::vector<float> samples(10);
            Process(samples);
            EXPECT_TRUE(plugin->MayChangeDSP()); // the last to process
        });
        audio.join();
        EXPECT_EQ(plugin->MayChangeDSP(), format == FormatDPMAudioSuite || format == FormatAU);
        EXPECT_TRUE(plugin->RecentlyProcessed());
        plugin->SetProcessingState(Side::UI, false, false);
        EXPECT_TRUE(plugin->MayChangeDSP());
    }
}
