// SPDX-License-Identifier: ISC
// How the two latencies and the dry path follow the elements and the settings.
#include "tests/frameworks/plugincore/instance/PluginRig.h"

using namespace PluginRig;

class PluginLatencyTest : public Fixture {
protected:
    /// Where an impulse at the begin of `length` samples comes out of the dry path.
    std::ptrdiff_t FindDryDelay(std::size_t length)
    {
        Set(Bypass, 1.0F);
        std::vector<float> samples = Impulse(length);
        Process(samples);
        return PeakOf(samples);
    }
};

TEST_F(PluginLatencyTest, ReportsALatencyOnceToEachSideWhileNoAudioRuns)
{
    Create();
    Set(Late, 0.5F);
    EXPECT_EQ(calls, (std::vector<Call>{{2, 0, 50}, {2, 1, 50}}));
    EXPECT_EQ(plugin->GetLatency(Side::Process), 50U);
    Set(Late, 0.5F);
    EXPECT_EQ(calls.size(), 2U);
}

TEST_F(PluginLatencyTest, LeavesTheUISidesHalfToTheTickWhileAudioRuns)
{
    Create();
    std::vector<float> samples(64);
    Process(samples);
    EXPECT_TRUE(plugin->IsProcessing());
    Set(Late, 0.25F, Side::Process);
    EXPECT_EQ(calls, (std::vector<Call>{{2, 0, 25}}));
    // From the other side: the command waits for the next block, and that tells the process side.
    Set(Late, 0.75F);
    EXPECT_EQ(plugin->GetLatency(Side::Process), 25U);
    Process(samples);
    EXPECT_EQ(plugin->GetLatency(Side::Process), 75U);
    plugin->SetProcessingState(Side::UI, false, false);
    EXPECT_FALSE(plugin->IsProcessing());
}

TEST_F(PluginLatencyTest, AddsTheHostsOwnDelayToTheUIFigureOnly)
{
    const auto answer = [](uint32_t, uint32_t opcode, uint32_t, void*, void* data) -> uint32_t {
        if (opcode == HostOpcodeGetHostDelay) {
            *static_cast<uint32_t*>(data) = 7;
            return PluginCoreSuccess;
        }
        return PluginCoreUnsupported;
    };
    const Plugin withDelay(factory, MakeSetup(answer, nullptr));
    EXPECT_EQ(withDelay.GetLatency(Side::Process), 0U);
    EXPECT_EQ(withDelay.GetLatency(Side::UI), 7U);
}

TEST_F(PluginLatencyTest, TakesADelayFromTheSettingsOnlyWhenItCanBeAndIsOnline)
{
    const std::tuple<int32_t, bool, const char*, uint32_t> cases[] = {
        {512, true, "", 512}, // above the elements' longest
        {5, false, "", 0},
        {-3, true, "", 100},
        {2'000'000'000, true, "", 100}, // gigabytes of dry lines
        {7, true, "Lang:de|Offline", 100},
    };
    for (const auto& [frozen, isCompensated, itsOptions, reported] : cases) {
        SCOPED_TRACE(frozen);
        settings.WriteInt("FrozenSystemDelay", frozen);
        settings.WriteBool("DelayCompensationEnable", isCompensated);
        options = itsOptions;
        Create();
        Set(Late, 1.0F);
        EXPECT_EQ(calls.empty(), reported != 100U) << "what is always the same is no news";
        EXPECT_EQ(plugin->GetLatency(Side::Process), reported);
        EXPECT_EQ(plugin->GetLatency(Side::UI), reported);
        EXPECT_EQ(FindDryDelay(1000), static_cast<std::ptrdiff_t>(reported));
    }
}
