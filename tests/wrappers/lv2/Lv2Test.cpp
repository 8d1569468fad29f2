// SPDX-License-Identifier: ISC
// What only this format has: hosts that offer or connect nothing, and properties of its own. The
// rest is the same for all formats.
#include "tests/contract/support/Takes.h"
#include "tests/wrappers/lv2/support/Lv2Host.h"

#include <gtest/gtest.h>

using Contract::Audio;
using Lv2Host::Plugin;
using Lv2Host::Saved;

namespace {

constexpr uint32_t Rate = 48000;

class Lv2Test : public testing::Test {
protected:
    const Audio speech = Contract::MakeSpeech(Rate, 2);
    const Audio expected = Contract::Expected(speech, Rate);
};

} // namespace

TEST_F(Lv2Test, AHostThatNeverActivatesOffersNothingAndConnectsNoControlsIsServed)
{
    Plugin plugin(2, Rate, Plugin::Manner::Bare);
    ASSERT_TRUE(plugin);
    plugin.Run(64); // nothing is connected at all
    plugin.Run(0);
    plugin.Reset(); // the silence above is forgotten
    plugin.Deactivate();
    for (uint32_t port = 0; port < 100; ++port) {
        plugin.Connect(port, nullptr);
    }
    plugin.Run(0);
    EXPECT_EQ(Contract::Difference(Contract::Play(plugin, speech, 777), expected), "");
    std::optional<Saved> saved;
    EXPECT_EQ(plugin.Store(saved), LV2_STATE_ERR_NO_FEATURE);
    EXPECT_EQ(plugin.Restore(saved), LV2_STATE_ERR_NO_FEATURE);
}

TEST_F(Lv2Test, WhatIsNoStateIsRefusedAndChangesNothing)
{
    Plugin plugin(1, Rate);
    plugin.SetParameter(Lv2Host::Strength, 0.75F);
    plugin.Run(0);
    std::optional<Saved> good;
    ASSERT_EQ(plugin.Store(good), LV2_STATE_SUCCESS);
    EXPECT_EQ(good->type, plugin.MakeSaved({}).type);
    Saved cut = *good;
    cut.bytes.pop_back();
    const std::tuple<const char*, std::optional<Saved>, LV2_State_Status> cases[] = {
        {"no property", std::nullopt, LV2_STATE_ERR_NO_PROPERTY},
        {"another type", Saved{good->key, 0, good->bytes}, LV2_STATE_ERR_BAD_TYPE},
        {"cut off", cut, LV2_STATE_ERR_UNKNOWN},
    };
    for (const auto& [name, saved, status] : cases) {
        EXPECT_EQ(plugin.Restore(saved), status) << name;
        std::optional<Saved> after;
        ASSERT_EQ(plugin.Store(after), LV2_STATE_SUCCESS);
        EXPECT_EQ(after->bytes, good->bytes) << name;
    }
}
