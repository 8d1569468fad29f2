// SPDX-License-Identifier: ISC
// What a session keeps, through streams of every manner, and what follows from loading one.
#include "tests/wrappers/clap/support/ClapTest.h"

using ClapHost::InputEvents;
using ClapHost::Plugin;
using TestHost::Audio;

using Bytes = std::vector<uint8_t>;

namespace {

class ClapSessionTest : public ClapPluginTest {
protected:
    void SetUp() override
    {
        ClapPluginTest::SetUp();
        strength = Find(*plugin, "Strength").id;
        bypass = Find(*plugin, "Global bypass").id;
    }

    void Set(clap_id id, double value)
    {
        InputEvents events;
        events.AddValue(0, id, value);
        plugin->Flush(&events, nullptr);
    }

    clap_id strength = 0;
    clap_id bypass = 0;
};

} // namespace

TEST_F(ClapSessionTest, ComesBackFromPiecesOfAnySizeAndIsSavedTheSame)
{
    for (const bool isActive : {false, true}) {
        if (isActive) {
            ASSERT_TRUE(plugin->Activate(rate));
        }
        Set(strength, 2.5);
        Set(bypass, 1.0);
        const Bytes saved = plugin->Save();
        ASSERT_FALSE(saved.empty());
        for (const uint64_t piece : {1U, 7U, 23U, 1000003U}) {
            EXPECT_EQ(plugin->Save(piece), saved) << piece;
            Set(strength, 7.0);
            Set(bypass, 0.0);
            ASSERT_TRUE(plugin->Load(saved, piece));
            EXPECT_EQ(plugin->GetValue(strength), 2.5);
            EXPECT_EQ(plugin->GetValue(bypass), 1.0);
            EXPECT_EQ(plugin->Save(), saved) << piece;
        }
        ClapHost::Host otherHost;
        Plugin other(otherHost);
        ASSERT_TRUE(other.Load(saved));
        EXPECT_EQ(other.GetValue(bypass), 1.0);
        EXPECT_EQ(other.Save(), saved);
        EXPECT_EQ(otherHost.valueRescans, 1U);
    }
}

TEST_F(ClapSessionTest, StreamsThatFailOrLieAreGivenUp)
{
    const auto* state = plugin->Find<clap_plugin_state_t>(CLAP_EXT_STATE);
    const Bytes saved = plugin->Save();
    for (const int64_t answer : {int64_t{-1}, int64_t{0}, INT64_MAX}) {
        int64_t context = answer;
        const clap_ostream_t out = {&context,
                                    [](const clap_ostream_t* self, const void*, uint64_t) {
                                        return *static_cast<int64_t*>(self->ctx);
                                    }};
        const clap_istream_t in = {&context, [](const clap_istream_t* self, void*, uint64_t) {
                                       return *static_cast<int64_t*>(self->ctx);
                                   }};
        EXPECT_FALSE(state->save(plugin->Get(), &out)) << answer;
        EXPECT_FALSE(state->load(plugin->Get(), &in)) << answer;
    }
    // One that never ends is given up before it has eaten all memory.
    const clap_istream_t endless = {nullptr, [](const clap_istream_t*, void* bytes, uint64_t size) {
                                        std::fill_n(static_cast<uint8_t*>(bytes), size, 'P');
                                        return static_cast<int64_t>(size);
                                    }};
    EXPECT_FALSE(state->load(plugin->Get(), &endless));
    EXPECT_FALSE(plugin->Load(Bytes(saved.begin(), saved.end() - 1)));
    EXPECT_EQ(host.valueRescans, 0U);
    EXPECT_EQ(plugin->Save(), saved);
}

TEST_F(ClapSessionTest, ItIsHeardFromTheNextBlockOnAndLaterEventsHaveTheLastWord)
{
    TestHost::Instance direct(48000, 2);
    direct.Set(TestHost::Strength, 1.0F);
    const Bytes session = ClapHost::MakeSession(direct.SaveState());
    const struct {
        const char* name;
        bool isFlushed;
        bool isInBlock;
        float strength;
    } cases[] = {{"alone", false, false, 10.0F},
                 {"then flushed", true, false, 2.0F},
                 {"then in the block", false, true, 2.0F}};
    for (const auto& [name, isFlushed, isInBlock, heard] : cases) {
        SCOPED_TRACE(name);
        Plugin one(host);
        ASSERT_TRUE(one.Activate(rate));
        Audio silence(2, std::vector<float>(512));
        Run(one, silence, 512);
        one.Reset();
        ASSERT_TRUE(one.Load(session));
        InputEvents events;
        events.AddValue(0, strength, 2.0);
        if (isFlushed) {
            one.Flush(&events, nullptr);
        }
        Audio audio = Speech(2);
        Run(one, audio, 0, rate, isInBlock ? &events : nullptr);
        EXPECT_EQ(one.GetValue(strength), static_cast<double>(heard));
        EXPECT_EQ(audio, Expected(Speech(2), heard));
    }
}
