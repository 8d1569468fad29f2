// SPDX-License-Identifier: ISC
// Parameters from the host's side: what they are called, and when a change of one is heard.
#include "tests/wrappers/clap/support/ClapTest.h"

#include <cmath>
#include <limits>
#include <random>
#include <set>

using ClapHost::InputEvents;
using ClapHost::Plugin;
using TestHost::Audio;

namespace {

class ClapParametersTest : public ClapPluginTest {
protected:
    void SetUp() override
    {
        ClapPluginTest::SetUp();
        strength = Find(*plugin, "Strength").id;
    }

    clap_id strength = 0;
};

} // namespace

TEST_F(ClapParametersTest, NumbersStayForGood)
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
    ASSERT_EQ(plugin->CountParameters(), std::size(expected));
    for (const auto& [name, id, module, flags] : expected) {
        const clap_param_info_t info = Find(*plugin, name);
        EXPECT_EQ(info.id, id) << name;
        EXPECT_STREQ(info.module, module) << name;
        EXPECT_EQ(info.flags, flags) << name;
        EXPECT_GE(info.default_value, info.min_value) << name;
        EXPECT_LE(info.default_value, info.max_value) << name;
        EXPECT_EQ(plugin->GetValue(info.id), info.default_value) << name;
    }
    const auto* params = plugin->Find<clap_plugin_params_t>(CLAP_EXT_PARAMS);
    clap_param_info_t info{};
    EXPECT_FALSE(params->get_info(plugin->Get(), 4, &info));
    double value = 7;
    EXPECT_FALSE(params->get_value(plugin->Get(), 12345, &value));
    EXPECT_FALSE(params->text_to_value(plugin->Get(), 12345, "1", &value));
    EXPECT_EQ(value, 7);
}

TEST_F(ClapParametersTest, TextsFitTheirPlaceAndComeBackAsTheValue)
{
    const auto* params = plugin->Find<clap_plugin_params_t>(CLAP_EXT_PARAMS);
    const clap_param_info_t limit = Find(*plugin, "Frequency limit");
    for (uint32_t size = 0; size < 12; ++size) {
        std::string place(12, '?');
        const bool isDone =
            params->value_to_text(plugin->Get(), limit.id, 123.4, place.data(), size);
        EXPECT_EQ(isDone, size > 0);
        const std::string whole = "123.4 Hz";
        const std::string cut = size > 0 ? whole.substr(0, size - 1) : "";
        EXPECT_EQ(place.substr(0, cut.size()), cut);
        EXPECT_EQ(place.find_last_not_of('?') + 1, size > 0 ? cut.size() + 1 : 0) << size;
    }
    double value = 0;
    EXPECT_TRUE(params->text_to_value(plugin->Get(), limit.id, "123.4 Hz", &value));
    EXPECT_NEAR(value, 123.4, 1e-4); // a float of the range
    EXPECT_FALSE(params->text_to_value(plugin->Get(), limit.id, "often", &value));
    char text[16];
    EXPECT_FALSE(params->value_to_text(plugin->Get(), limit.id, std::nan(""), text, sizeof text));
}

TEST_F(ClapParametersTest, AnEventCutsTheBlockAtItsSample)
{
    std::mt19937 engine(1);
    for (const uint32_t step : {1000U, 100U, 10U}) {
        // The same changes as events within blocks, and before blocks that end where they are.
        Audio whole = Speech(2);
        Audio cut = whole;
        Plugin other(host);
        ASSERT_TRUE(plugin->Activate(rate));
        ASSERT_TRUE(other.Activate(rate));
        constexpr uint32_t block = 4000;
        for (uint32_t begin = 0; begin < rate; begin += block) {
            InputEvents events;
            for (uint32_t time = 0; time < block; time += step) {
                const auto value = static_cast<double>(engine() % 11);
                events.AddValue(time, strength, value);
                InputEvents one;
                one.AddValue(0, strength, value);
                Run(other, cut, begin + time, step, &one);
            }
            ASSERT_EQ(Run(*plugin, whole, begin, block, &events), CLAP_PROCESS_TAIL);
        }
        EXPECT_EQ(whole, cut) << step;
        EXPECT_NE(whole, Expected(Speech(2))) << "the changes must be heard";
        plugin->Deactivate();
    }
}

TEST_F(ClapParametersTest, FlushedOrProcessedAValueIsTheSame)
{
    enum class Way { FlushedBefore, Flushed, InABlockOfNone, InTheBlock };
    const Audio expected = Expected(Speech(2), 8.0F);
    for (const Way way : {Way::FlushedBefore, Way::Flushed, Way::InABlockOfNone, Way::InTheBlock}) {
        SCOPED_TRACE(static_cast<int>(way));
        Plugin one(host);
        InputEvents events;
        events.AddValue(0, strength, 8.0);
        if (way == Way::FlushedBefore) {
            one.Flush(&events, nullptr);
            EXPECT_EQ(one.GetValue(strength), 8.0);
        }
        ASSERT_TRUE(one.Activate(rate));
        if (way == Way::Flushed) {
            one.Flush(&events, nullptr);
        } else if (way == Way::InABlockOfNone) {
            one.Process(nullptr, nullptr, 0, 0, &events);
        }
        Audio audio = Speech(2);
        Run(one, audio, 0, rate, way == Way::InTheBlock ? &events : nullptr);
        EXPECT_EQ(one.GetValue(strength), 8.0);
        EXPECT_EQ(audio, expected);
    }
}

TEST_F(ClapParametersTest, WhatIsNotMeantForUsChangesNothing)
{
    ASSERT_TRUE(plugin->Activate(rate));
    InputEvents events;
    events.AddValue(0, strength, 9.0, 1); // a foreign space
    events.AddValue(
        0, strength, 9.0, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_PARAM_MOD); // no such flag
    events.AddValue(0, strength, 9.0, CLAP_CORE_EVENT_SPACE_ID, CLAP_EVENT_NOTE_ON);
    events.AddValue(0, strength + 1, 9.0);
    events.AddValue(0, strength, std::nan(""));
    Audio audio = Speech(2);
    Run(*plugin, audio, 0, rate, &events);
    EXPECT_EQ(plugin->GetValue(strength), 5.0);
    EXPECT_EQ(audio, Expected(Speech(2)));
}

TEST_F(ClapParametersTest, ValuesOutOfRangeAndTimesOutOfOrderAreBroughtIn)
{
    constexpr double infinite = std::numeric_limits<double>::infinity();
    const clap_id bypass = Find(*plugin, "Global bypass").id;
    ASSERT_TRUE(plugin->Activate(rate));
    const struct {
        double sent;
        double heard;
    } cases[] = {{1e30, 10}, {-infinite, 0}, {infinite, 10}, {9.99, 9.99}};
    for (const auto& [sent, heard] : cases) {
        InputEvents events;
        events.AddValue(40, strength, 3.0);
        events.AddValue(1U << 30U, strength, sent); // after the block's end
        events.AddValue(20, bypass, 0.7);           // back in time
        Audio audio = Speech(2);
        Run(*plugin, audio, 0, 64, &events);
        EXPECT_EQ(plugin->GetValue(strength), heard);
        EXPECT_EQ(plugin->GetValue(bypass), 1.0);
    }
}
