// SPDX-License-Identifier: ISC
// The name of this program makes the instance take it for a host that wants to know whether a state
// was saved by an untouched instance.
#include "frameworks/plugincore/dispatch/Entry.h"
#include "tests/frameworks/plugincore/instance/PluginRig.h"

namespace {

constexpr const char* Default = R"("PT Default State":{"Type":"Bool","Value":true})";
constexpr const char* NoDefault = R"("PT Default State":{"Type":"Bool","Value":false})";

struct HostNameTest : PluginRig::StateFixture {
    HostNameTest() { Create(); }

    // True when it failed.
    bool Run(int32_t op, Util::Bytes& chunk)
    {
        StateRecord record{};
        record.op = op;
        record.size = static_cast<uint32_t>(chunk.size());
        record.buffer = chunk.data();
        EXPECT_EQ(DispatchEntryCall(
                      factory, PLUGIN_CORE_MAGIC, SelectorStateCommand, 1, plugin.get(), &record),
                  PluginCoreSuccess);
        return record.failed != 0;
    }
    String SaveAsHost()
    {
        Util::Bytes chunk(plugin->GetStateSize());
        EXPECT_FALSE(Run(StateOpGetChunk, chunk));
        return TextOf(chunk);
    }
};

} // namespace

TEST_F(HostNameTest, AStateIsTheDefaultUntilTheHostHasSavedIt)
{
    plugin->SetStreamFormat(96000.0F, 1); // saves and loads by itself
    Util::Bytes comparison(1000);         // more than it takes
    Run(StateOpGetCompareChunk, comparison);
    EXPECT_TRUE(TextOf(comparison).Find("DSP State"));
    EXPECT_FALSE(TextOf(comparison).Find("PT Default State"));
    EXPECT_TRUE(SaveAsHost().Find(Default));
    EXPECT_TRUE(SaveAsHost().Find(NoDefault));
}

TEST_F(HostNameTest, AStateIsNoDefaultAfterALoadEvenAFailedOne)
{
    Util::Bytes none;
    EXPECT_TRUE(Run(StateOpSetChunk, none));
    EXPECT_TRUE(SaveAsHost().Find(NoDefault));
}
