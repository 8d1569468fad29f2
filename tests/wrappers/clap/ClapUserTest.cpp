// SPDX-License-Identifier: ISC
// What a user does in the editor on its way to the host, with a module that plays the user; and
// where the module finds itself in the host's transport.
#include "tests/wrappers/clap/support/ClapTest.h"

#include <dlfcn.h>

using ClapHost::InputEvents;
using ClapHost::OutputEvents;

using Texts = std::vector<std::string>;

namespace {

class ClapUserTest : public ClapTest {
protected:
    /// What the user does; see the module.
    void Do(uint8_t deed, uint8_t parameter = 0, uint8_t value = 0)
    {
        // The byte in the middle is where a state shows that it is one.
        const std::vector<uint8_t> state = {deed, parameter, value, 0, 8, 0, 0, 0};
        ASSERT_TRUE(plugin.Load(plugin.MakeSession(state)));
    }

    /// What the plug-in has to say on its own.
    Texts Flush()
    {
        OutputEvents out;
        plugin.Flush(nullptr, &out);
        return out.texts;
    }

    const ModuleChoice module{USER_MODULE};
    ClapHost::Plugin plugin{host};
    const clap_id amountId = plugin.Describe(0).id;
    const std::string amount = std::to_string(amountId);
};

} // namespace

TEST_F(ClapUserTest, AGestureReachesTheHostWholeByFlushOrBlock)
{
    const Texts expected = {"begin " + amount, amount + " = 51.000000", "end " + amount};
    Do('g', 0, 51);
    EXPECT_EQ(host->flushes, 3U);
    EXPECT_EQ(plugin.GetValue(amountId), 51.0);
    EXPECT_EQ(Flush(), expected);

    ASSERT_TRUE(plugin.Activate(Rate));
    Do('g', 0, 51);
    OutputEvents processed;
    plugin.Send(nullptr, nullptr, 64, nullptr, &processed);
    EXPECT_EQ(processed.texts, expected);
    plugin.Send(nullptr, nullptr, 64, nullptr, &processed);
    EXPECT_EQ(processed.texts, expected) << "once only";
}

TEST_F(ClapUserTest, WhatTheHostDoesNotTakeNowWaitsForItsNextChance)
{
    Do('g', 0, 51);
    Do('g', 0, 102);
    OutputEvents first;
    first.capacity = 2;
    plugin.Flush(nullptr, &first);
    plugin.Flush(nullptr, nullptr);
    // The value is the one that is there by now: the host has the last word on what it will be.
    EXPECT_EQ(first.texts, (Texts{"begin " + amount, amount + " = 102.000000"}));
    EXPECT_EQ(
        Flush(),
        (Texts{"end " + amount, "begin " + amount, amount + " = 102.000000", "end " + amount}));
}

TEST_F(ClapUserTest, WhenTooMuchWaitsTheHostIsToldToReadTheValues)
{
    const uint32_t former = host->valueRescans;
    Do('f');
    const uint32_t loaded = host->valueRescans;
    EXPECT_EQ(loaded, former + 1) << "the loading itself";
    plugin.Idle();
    EXPECT_EQ(host->valueRescans, loaded + 1);
    const Texts texts = Flush();
    EXPECT_EQ(texts.front(), "begin " + amount);
    EXPECT_GT(texts.size(), 100U);
}

TEST_F(ClapUserTest, NoGestureStaysOpenWhicheverHasNoRoom)
{
    // The queue is full after a begin, a change or an end.
    for (const int ahead : {0, 1, 2}) {
        SCOPED_TRACE(ahead);
        for (int i = 0; i < ahead; ++i) {
            Do('c');
        }
        Do('f');
        Do('g', 0, 51); // all of it lost
        OutputEvents out;
        out.capacity = 700; // and the rest at another time
        plugin.Flush(nullptr, &out);
        out.capacity = SIZE_MAX;
        plugin.Flush(nullptr, &out);
        EXPECT_EQ(out.texts.back(), "end " + amount);
        Do('g', 0, 102);
        plugin.Flush(nullptr, &out);
        bool isOpen = false;
        for (const std::string& text : out.texts) {
            const bool isBegin = text == "begin " + amount;
            if (isBegin || text == "end " + amount) {
                ASSERT_NE(isBegin, isOpen) << text;
                isOpen = isBegin;
            }
        }
        EXPECT_FALSE(isOpen);
        EXPECT_EQ(*(out.texts.end() - 2), amount + " = 102.000000");
    }
}

TEST_F(ClapUserTest, AValueThatTheHostHasSetSinceIsNotTakenBack)
{
    Do('g', 0, 51);
    InputEvents events;
    events.AddValue(0, amountId, 7.0);
    plugin.Flush(&events, nullptr); // takes no events of ours yet
    EXPECT_EQ(Flush(), (Texts{"begin " + amount, amount + " = 7.000000", "end " + amount}));
}

TEST_F(ClapUserTest, AValueOfTheUserStaysWhateverTheHostHasSetBefore)
{
    void* const library = dlopen(USER_MODULE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto turn = reinterpret_cast<float (*)(float)>(dlsym(library, "TurnUserModule"));
    ASSERT_NE(turn, nullptr) << dlerror();
    ASSERT_TRUE(plugin.Activate(Rate));
    InputEvents events;
    events.AddValue(0, amountId, 64.0);
    plugin.Send(nullptr, nullptr, 64, &events);
    EXPECT_EQ(turn(0.75F), 0.25F);
    plugin.Send(nullptr, nullptr, 64); // takes it over
    plugin.Send(nullptr, nullptr, 64);
    EXPECT_EQ(turn(0.0F), 0.75F);
    dlclose(library);
}

TEST_F(ClapUserTest, AParameterThatIsNoneIsNotPassedOn)
{
    Do('g', 2, 51);
    EXPECT_EQ(Flush(), Texts{});
}

TEST_F(ClapUserTest, AChangedStateMarksTheSessionOnTheMainThread)
{
    Do('s');
    EXPECT_EQ(host->dirtyMarks, 0U);
    plugin.Idle();
    EXPECT_EQ(host->dirtyMarks, 1U);
    plugin.Idle();
    EXPECT_EQ(host->dirtyMarks, 1U);
}

TEST_F(ClapUserTest, ALatencyAsksForOneRestartAndOneThatComesBackForNone)
{
    ASSERT_TRUE(plugin.Activate(Rate));
    Do('l', 100);
    Do('l', 0);
    plugin.Idle();
    EXPECT_EQ(host->restarts, 0U);
    Do('l', 100);
    plugin.Idle();
    EXPECT_EQ(host->restarts, 1U);
    Do('s');
    plugin.Idle(); // for another reason
    EXPECT_EQ(host->restarts, 1U);
    Do('l', 50);
    plugin.Idle();
    EXPECT_EQ(host->restarts, 2U) << "the host hasn't followed, and now there is another one";
}

TEST_F(ClapUserTest, LatencyAndTailStayWhatTheyWereUntilTheRestart)
{
    const auto* tail = plugin.Find<Clap::Abi::PluginTail>(Clap::Abi::ExtTail);
    const auto read = [&] { return std::pair(plugin.GetLatency(), tail->get(plugin.Get())); };
    using Samples = std::pair<uint32_t, uint32_t>;
    Do('l', 30);
    ASSERT_TRUE(plugin.Activate(Rate));
    EXPECT_EQ(read(), Samples(30, 30));
    plugin.Send(nullptr, nullptr, 64);
    EXPECT_EQ(host->tailChanges, 1U);
    Do('l', 100);
    plugin.Send(nullptr, nullptr, 64);
    EXPECT_EQ(read(), Samples(30, 30));
    plugin.Deactivate();
    EXPECT_EQ(read(), Samples(100, 100));
    EXPECT_EQ(host->latencyChanges, 1U);
    ASSERT_TRUE(plugin.Activate(Rate));
    EXPECT_EQ(read(), Samples(100, 100));
    EXPECT_EQ(host->latencyChanges, 2U);
    EXPECT_EQ(host->tailChanges, 1U);
    plugin.Send(nullptr, nullptr, 64);
    plugin.Send(nullptr, nullptr, 64);
    EXPECT_EQ(host->tailChanges, 2U);
}

TEST_F(ClapUserTest, AChoiceIsMadeOfWholeNumbersAndNames)
{
    const clap_param_info_t mode = plugin.Describe(1);
    EXPECT_EQ(mode.flags, uint32_t{CLAP_PARAM_IS_AUTOMATABLE} | CLAP_PARAM_IS_STEPPED | 1U << 16U);
    EXPECT_EQ(mode.max_value, 2.0);
    const auto* params = plugin.Find<clap_plugin_params_t>(CLAP_EXT_PARAMS);
    char text[16] = {};
    EXPECT_TRUE(params->value_to_text(plugin.Get(), mode.id, 1.0, text, sizeof text));
    EXPECT_STREQ(text, "Middle");
    double value = 0;
    EXPECT_TRUE(params->text_to_value(plugin.Get(), mode.id, "High", &value));
    EXPECT_EQ(value, 2.0);
    InputEvents events;
    events.AddValue(0, mode.id, 1.4);
    plugin.Flush(&events, nullptr);
    EXPECT_EQ(plugin.GetValue(mode.id), 1.0);
}

TEST_F(ClapUserTest, SamplesHaveTheirPlaceInATransportThatRuns)
{
    ASSERT_TRUE(plugin.Activate(1000));
    std::vector<float> left(10);
    std::vector<float> right(10);
    float* channels[2] = {left.data(), right.data()};
    const auto run = [&](std::optional<double> seconds, const InputEvents* events) {
        const clap_event_transport_t transport = InputEvents::MakeTransport(0, seconds);
        plugin.Send(channels, channels, 10, events, nullptr, &transport);
        return left;
    };
    using Samples = std::vector<float>;
    // A change of a value cuts the block, which is no jump in time.
    InputEvents value;
    value.AddValue(3, amountId, 7.0);
    EXPECT_EQ(run(2.5, &value),
              (Samples{2500, 2501, 2502, 2503, 2504, 2505, 2506, 2507, 2508, 2509}));
    EXPECT_EQ(run(std::nullopt, nullptr), Samples(10, -1));
    InputEvents jumps;
    jumps.AddTransport(2, 0.5);
    jumps.AddTransport(6, std::nullopt);
    jumps.AddTransport(8, 0.25);
    EXPECT_EQ(run(2.5, &jumps), (Samples{2500, 2501, 500, 501, 502, 503, -1, -1, 250, 251}));
    // What the user does leads the block a frame ahead of the host's events.
    Do('g', 0, 51);
    InputEvents start;
    start.AddTransport(0, 0.5);
    EXPECT_EQ(run(2.5, &start), (Samples{2500, 501, 502, 503, 504, 505, 506, 507, 508, 509}));
    plugin.Send(channels, channels, 10);
    EXPECT_EQ(left, Samples(10, -1)) << "a host without transport";
}
