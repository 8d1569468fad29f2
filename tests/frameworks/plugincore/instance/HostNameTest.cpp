// SPDX-License-Identifier: ISC
// The name of this program makes the instance take it for a host that wants to know whether a state
// was saved by an untouched instance.
#include "frameworks/plugincore/dispatch/Entry.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/plugincore/instance/StateChunk.h"
#include "restoration/plugin_LM_Puffguard/PluginFactoryImpl.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace {

struct HostNameTest : testing::Test {
    const Support::UserFolders folders;
    PluginFactory& factory = LMPuffguard::GetPluginFactory();
    std::unique_ptr<PluginCore> plugin;

    HostNameTest()
    {
        PluginSetup setup;
        setup.sampleRate = 48000.0F;
        plugin = factory.CreatePlugin(setup);
    }

    uint8_t Run(StateRecord& record)
    {
        EXPECT_EQ(DispatchEntryCall(
                      factory, PLUGIN_CORE_MAGIC, SelectorStateCommand, 1, plugin.get(), &record),
                  PluginCoreSuccess);
        return record.failed;
    }

    // The flag in the chunk that this operation gives.
    std::optional<bool> SavedFlag(int32_t op)
    {
        StateRecord record{};
        record.op = StateOpGetSize;
        Run(record);
        Util::Bytes chunk(record.size + 64); // the comparison's chunk may be of another size
        record.op = op;
        record.buffer = chunk.data();
        if (op == StateOpGetChunk) {
            chunk.resize(record.size);
            EXPECT_EQ(Run(record), 0);
        } else {
            record.size = static_cast<uint32_t>(chunk.size());
            Run(record);
        }
        const auto text = StateChunk::ReadText(chunk);
        const auto state =
            text ? Util::ReadDictionary(*factory.CreateReader(), *text) : std::nullopt;
        EXPECT_TRUE(state);
        const bool* flag = state ? state->Find<bool>("PT Default State") : nullptr;
        return flag != nullptr ? std::optional<bool>(*flag) : std::nullopt;
    }
};

} // namespace

TEST_F(HostNameTest, AStateIsTheDefaultUntilTheHostHasSavedIt)
{
    plugin->SetStreamFormat(96000.0F, 1); // saves and loads by itself
    EXPECT_EQ(SavedFlag(StateOpGetCompareChunk), std::nullopt);
    EXPECT_EQ(SavedFlag(StateOpGetChunk), true);
    EXPECT_EQ(SavedFlag(StateOpGetChunk), false);
}

TEST_F(HostNameTest, AStateIsNoDefaultAfterALoadEvenAFailedOne)
{
    StateRecord record{};
    record.op = StateOpSetChunk;
    EXPECT_EQ(Run(record), 1);
    EXPECT_EQ(SavedFlag(StateOpGetChunk), false);
}
