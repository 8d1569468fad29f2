// SPDX-License-Identifier: ISC
// Parameters and sessions where this format has rules of its own.
#include "tests/wrappers/clap/support/ClapTest.h"

#include <algorithm>
#include <cmath>
#include <random>

using ClapHost::InputEvents;
using ClapHost::Plugin;
using TestHost::Audio;

namespace {

class ClapPluginTest : public ClapTest {
protected:
    Plugin plugin{host};
    const clap_id strength = plugin.Describe(TestHost::Strength).id;
    const clap_plugin_params_t* const params = plugin.Find<clap_plugin_params_t>(CLAP_EXT_PARAMS);
};

} // namespace

TEST_F(ClapPluginTest, ParametersHaveNumbersThatStayForGood)
{
    // FNV-1a in 32 bits of "element.parameter", without the top bit, worked out by another program.
    // Sessions and automation of released versions hold them: none of them may ever change.
    const struct {
        const char* name;
        clap_id id;
        const char* module;
        clap_param_info_flags flags;
    } expected[] = {
        {"Sensitivity", 674812114U, "PuffGuard", CLAP_PARAM_IS_AUTOMATABLE},
        {"Strength", 808038898U, "PuffGuard", CLAP_PARAM_IS_AUTOMATABLE},
        {"Frequency limit", 1867466536U, "PuffGuard", CLAP_PARAM_IS_AUTOMATABLE},
        {"Global bypass",
         63163949U,
         "Global",
         CLAP_PARAM_IS_AUTOMATABLE | CLAP_PARAM_IS_STEPPED | CLAP_PARAM_IS_BYPASS},
    };
    ASSERT_EQ(plugin.CountParameters(), std::size(expected));
    for (uint32_t index = 0; index < std::size(expected); ++index) {
        const clap_param_info_t info = plugin.Describe(index);
        SCOPED_TRACE(info.name);
        EXPECT_TRUE(std::string(info.name).starts_with(expected[index].name));
        EXPECT_EQ(info.id, expected[index].id);
        EXPECT_STREQ(info.module, expected[index].module);
        EXPECT_EQ(info.flags, expected[index].flags);
        EXPECT_GE(info.default_value, info.min_value);
        EXPECT_LE(info.default_value, info.max_value);
        EXPECT_EQ(plugin.GetValue(info.id), info.default_value);
    }
    clap_param_info_t info{};
    EXPECT_FALSE(params->get_info(plugin.Get(), 4, &info));
    double value = 7;
    EXPECT_FALSE(params->get_value(plugin.Get(), 12345, &value));
    EXPECT_FALSE(params->text_to_value(plugin.Get(), 12345, "1", &value));
    EXPECT_EQ(value, 7);
}

TEST_F(ClapPluginTest, TextsFitTheirPlaceAndComeBackAsTheValue)
{
    const clap_id limit = plugin.Describe(TestHost::UpperFrequency).id;
    for (uint32_t size = 0; size < 12; ++size) {
        std::string place(12, '?');
        EXPECT_EQ(params->value_to_text(plugin.Get(), limit, 123.4, place.data(), size), size > 0);
        const std::string whole = "123.4 Hz";
        const std::string cut = size > 0 ? whole.substr(0, size - 1) : "";
        EXPECT_EQ(place.substr(0, cut.size()), cut);
        EXPECT_EQ(place.find_last_not_of('?') + 1, size > 0 ? cut.size() + 1 : 0) << size;
    }
    double value = 0;
    EXPECT_TRUE(params->text_to_value(plugin.Get(), limit, "123.4 Hz", &value));
    EXPECT_NEAR(value, 123.4, 1e-4); // a float of the range
    EXPECT_FALSE(params->text_to_value(plugin.Get(), limit, "often", &value));
    char text[16];
    EXPECT_FALSE(params->value_to_text(plugin.Get(), limit, std::nan(""), text, sizeof text));
}

TEST_F(ClapPluginTest, AnEventCutsTheBlockAtItsSample)
{
    std::mt19937 engine(1);
    for (const uint32_t step : {1000U, 100U, 10U}) {
        // The same changes as events of one block, and before blocks that end where they are.
        Plugin other(host);
        ASSERT_TRUE(plugin.Activate(Rate));
        ASSERT_TRUE(other.Activate(Rate));
        InputEvents events;
        uint32_t time = 0;
        const Audio cut = Contract::Play(other, Speech(), [&] {
            const auto eighths = static_cast<uint32_t>(engine() % 9);
            events.AddValue(time, strength, eighths * 10 / 8.0);
            other.SetParameter(TestHost::Strength, static_cast<float>(eighths) / 8);
            time += step;
            return step;
        });
        EXPECT_EQ(plugin.Send(Speech(), &events), cut) << step;
        EXPECT_NE(cut, Expected()) << "the changes must be heard";
        plugin.Deactivate();
    }
}

// While it is active, the contract's host does so before each block of no frames.
TEST_F(ClapPluginTest, AValueThatIsFlushedBeforeTheBeginningCounts)
{
    InputEvents events;
    events.AddValue(0, strength, 8.0);
    plugin.Flush(&events, nullptr);
    EXPECT_EQ(plugin.GetValue(strength), 8.0);
    ASSERT_TRUE(plugin.Activate(Rate));
    EXPECT_EQ(plugin.Send(Speech()), Expected(8.0F));
}

TEST_F(ClapPluginTest, WhatIsNotMeantForUsChangesNothing)
{
    ASSERT_TRUE(plugin.Activate(Rate));
    InputEvents events;
    events.AddValue(0, strength, 9.0, 1); // a foreign space
    events.AddValue(
        0, strength, 9.0, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_PARAM_MOD); // no such flag
    events.AddValue(0, strength, 9.0, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_NOTE_ON);
    events.AddValue(0, strength + 1, 9.0);
    events.AddValue(0, strength, std::nan(""));
    EXPECT_EQ(plugin.Send(Speech(), &events), Expected());
    EXPECT_EQ(plugin.GetValue(strength), 5.0);
}

TEST_F(ClapPluginTest, TimesOutOfOrderAreBroughtIn)
{
    const clap_id bypass = plugin.Describe(TestHost::GlobalBypass).id;
    ASSERT_TRUE(plugin.Activate(Rate));
    InputEvents events;
    events.AddValue(40, strength, 3.0);
    events.AddValue(1U << 30U, strength, 9.99); // after the block's end
    events.AddValue(20, bypass, 0.7);           // back in time
    plugin.Send(Audio(2, std::vector<float>(64)), &events);
    EXPECT_EQ(plugin.GetValue(strength), 9.99);
    EXPECT_EQ(plugin.GetValue(bypass), 1.0);
}

TEST_F(ClapPluginTest, StreamsThatFailOrLieAreGivenUp)
{
    const auto* state = plugin.Find<clap_plugin_state_t>(CLAP_EXT_STATE);
    const std::vector<uint8_t> saved = plugin.Save();
    for (const int64_t answer : {int64_t{-1}, int64_t{0}, INT64_MAX}) {
        int64_t context = answer;
        const clap_ostream_t out = {&context,
                                    [](const clap_ostream_t* self, const void*, uint64_t) {
                                        return *static_cast<int64_t*>(self->ctx);
                                    }};
        const clap_istream_t in = {&context, [](const clap_istream_t* self, void*, uint64_t) {
                                       return *static_cast<int64_t*>(self->ctx);
                                   }};
        EXPECT_FALSE(state->save(plugin.Get(), &out)) << answer;
        EXPECT_FALSE(state->load(plugin.Get(), &in)) << answer;
    }
    // One that never ends is given up before it has eaten all memory.
    const clap_istream_t endless = {nullptr, [](const clap_istream_t*, void* bytes, uint64_t size) {
                                        std::fill_n(static_cast<uint8_t*>(bytes), size, 'P');
                                        return static_cast<int64_t>(size);
                                    }};
    EXPECT_FALSE(state->load(plugin.Get(), &endless));
    EXPECT_EQ(plugin.Save(), saved);
    EXPECT_EQ(host->valueRescans, 0U);
    EXPECT_TRUE(plugin.Load(saved));
    EXPECT_EQ(host->valueRescans, 1U) << "the host reads the values anew";
}

TEST_F(ClapTest, ATouchInTheHostsOwnViewIsAStepOfTheUndoHistory)
{
    {
        Plugin plugin(host);
        const clap_id id = plugin.Describe(TestHost::Sensitivity).id;
        const auto touch = [&](double value) {
            InputEvents events;
            const auto add = [&](uint16_t type) {
                events.AddValue(0, id, value, CLAP_CORE_EVENT_SPACE_ID, type);
            };
            add(CLAP_EVENT_PARAM_GESTURE_BEGIN);
            add(CLAP_EVENT_PARAM_VALUE);
            add(CLAP_EVENT_PARAM_GESTURE_END);
            plugin.Flush(&events, nullptr);
            plugin.Idle();
        };
        touch(6.5);
        ASSERT_TRUE(plugin.Activate(Rate));
        touch(7.5); // on the audio thread
        plugin.Deactivate();
    }
    const std::string file =
        Support::ReadText(folders.Home() / "data/Norvane/LM6Pfgd/QoLM6Pfgd.hst");
    EXPECT_NE(file.find("Sensitivity: 6.5"), std::string::npos);
    EXPECT_NE(file.find("Sensitivity: 7.5"), std::string::npos);
}
