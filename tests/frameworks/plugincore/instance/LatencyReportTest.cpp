// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/LatencyReport.h"
#include "frameworks/plugincore/instance/ThreadMark.h"

#include "tests/frameworks/plugincore/instance/PluginRig.h"
#include "tests/support/TestElementHost.h"

using namespace PluginRig;

TEST(LatencyReportTest, KeepsTheElementsSumWhateverIsReported)
{
    Support::TestElementHost host;
    HostCallback refusing(nullptr, nullptr);
    const Factory factory;
    const auto path = factory.CreateTransform(host, 48000.0F, 0);
    const Util::CriticalSectionGuard guard(host.GetProcessLock());
    factory.transform->GetBox().SetFloatValue(Box::Late, 25.0F, Side::UI, DSP::SourceHost);
    const std::vector<std::pair<LatencyReport::Settings, uint32_t>> cases{
        {{}, 25}, {{true, 512}, 512}, {{false, 512}, 0}};
    for (const auto& [settings, reported] : cases) {
        LatencyReport report(settings, host, refusing);
        report.onElementChanged(Side::Process); // its elements are still under construction
        EXPECT_EQ(report.GetSum(Side::Process), 0U);
        report.Attach(path.get());
        report.onElementChanged(Side::Process); // no audio runs, so that both halves are done
        for (const Side side : {Side::Process, Side::UI}) {
            EXPECT_EQ(report.GetSum(side), 25U);
            EXPECT_EQ(report.GetReported(side), reported);
        }
    }
}

TEST(ThreadMarkDeathTest, IsForWhoeverHoldsTheProcessingLock)
{
    Util::CriticalSection lock("Process");
    std::atomic<std::thread::id> id{};
    EXPECT_DEBUG_DEATH(ThreadMark(id, lock), "IsOwnedByCaller");
    id = std::thread::id(); // a build without assertions has come this far
    const Util::CriticalSectionGuard guard(lock);
    const ThreadMark outer(id, lock);
    {
        const ThreadMark inner(id, lock);
    }
    EXPECT_EQ(id.load(), std::this_thread::get_id());
}
