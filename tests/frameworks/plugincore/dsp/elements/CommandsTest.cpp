// SPDX-License-Identifier: ISC
// The rings of an element and the way of commands through it.
#include "frameworks/plugincore/dsp/elements/DSPCommandFifo.h"
#include "frameworks/plugincore/dsp/elements/ElementDispatcher.h"

#include "tests/support/TestElementHost.h"

#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace {

using DSP::DSPCommand;
using DSP::DSPCommandFifo;

class NullCommand final : public DSPCommand {
public:
    bool ProcessThreadStep() override { return false; }
    bool UIThreadStep() override { return false; }
};

// Notes its steps as 'P' and 'U', goes on for a number of them, and notes its end as '.'.
class NotingCommand final : public DSPCommand {
public:
    NotingCommand(std::string& newNotes, int newSteps)
        : notes(newNotes)
        , steps(newSteps)
    {
    }
    ~NotingCommand() override { notes += '.'; }
    bool ProcessThreadStep() override { return Step('P'); }
    bool UIThreadStep() override { return Step('U'); }

private:
    bool Step(char side)
    {
        notes += side;
        return --steps > 0;
    }

    std::string& notes;
    int steps;
};

std::vector<std::unique_ptr<NullCommand>> MakeCommands(std::size_t count)
{
    std::vector<std::unique_ptr<NullCommand>> commands(count);
    for (auto& command : commands) {
        command = std::make_unique<NullCommand>();
    }
    return commands;
}

} // namespace

TEST(DSPCommandFifo, HoldsOneLessThanItsSlotsAndKeepsTheOrder)
{
    DSPCommandFifo fifo("Test", DSPCommandFifo::Growing::No, 8);
    const auto commands = MakeCommands(8);
    for (int round = 0; round < 3; ++round) { // the indices wrap in the second round
        for (std::size_t i = 0; i < 7; ++i) {
            ASSERT_TRUE(fifo.Push(commands[i].get()));
        }
        EXPECT_FALSE(fifo.Push(commands[7].get()));
        for (std::size_t i = 0; i < 7; ++i) {
            ASSERT_EQ(fifo.Pop(), commands[i].get());
        }
        EXPECT_EQ(fifo.Pop(), nullptr);
    }
}

TEST(DSPCommandFifo, GrowsAtThe512thUnreadCommandAndLosesNone)
{
    DSPCommandFifo fifo("Test", DSPCommandFifo::Growing::Yes);
    const auto commands = MakeCommands(800);
    for (std::size_t i = 0; i < 300; ++i) { // so that the ring wraps before it grows
        fifo.Push(commands[i].get());
        fifo.Pop();
    }
    for (std::size_t i = 0; i < 511; ++i) {
        fifo.Push(commands[i].get());
    }
    EXPECT_EQ(fifo.GetCapacity(), 512U);
    for (std::size_t i = 511; i < 800; ++i) {
        fifo.Push(commands[i].get());
    }
    EXPECT_EQ(fifo.GetCapacity(), 1024U);
    for (const auto& command : commands) {
        ASSERT_EQ(fifo.Pop(), command.get());
    }
    EXPECT_EQ(fifo.Pop(), nullptr);
}

TEST(DSPCommandFifo, PassesEverythingOnceBetweenTwoThreads)
{
    DSPCommandFifo fifo("Test", DSPCommandFifo::Growing::Yes, 4);
    const auto commands = MakeCommands(20000);
    std::thread writer([&] {
        for (const auto& command : commands) {
            fifo.Push(command.get());
        }
    });
    for (const auto& command : commands) {
        DSPCommand* popped = nullptr;
        while ((popped = fifo.Pop()) == nullptr) {
            std::this_thread::yield();
        }
        ASSERT_EQ(popped, command.get());
    }
    writer.join();
}

TEST(ElementCommands, PassBetweenTheSidesUntilAStepEndsThem)
{
    const struct {
        int steps;
        const char* events; // a: audio begins, s: audio stops, b: a block, t: a tick, c: cancelled
        const char* notes;
    } cases[] = {
        {3, "a", ""},
        {3, "ab", "P"}, // a block of 0 frames still takes commands in
        {3, "abt", "PU"},
        {3, "abtb", "PUP"}, // ended, but deleted on the UI side only
        {3, "abtbt", "PUP."},
        {3, "ast", "PU"}, // one round of both sides a tick
        {3, "astt", "PUP."},
        {10, "abct", "P."},
        {2, "", "PU."}, // at once while no audio runs
    };
    for (const auto& [steps, events, expected] : cases) {
        Support::TestElementHost host;
        DSP::ElementDispatcher element({host, "Test", 48000.0F, 0});
        std::string notes;
        auto* const command = new NotingCommand(notes, steps);
        host.processing = *events == 'a';
        element.PostCommand(command);
        for (const char event : std::string(events)) {
            host.processing = host.processing && event != 's';
            if (event == 'b') {
                element.ProcessRegion(0, 0, nullptr);
            } else if (event == 't') {
                element.ServiceCommands();
            } else if (event == 'c') {
                command->Cancel();
            }
        }
        EXPECT_EQ(notes, expected) << events;
        EXPECT_EQ(host.commandsUnderWay, notes.ends_with('.') ? 0 : 1) << events;
    }
}

TEST(ElementCommands, OlderOnesGoFirst)
{
    Support::TestElementHost host;
    DSP::ElementDispatcher element({host, "Test", 48000.0F, 0});
    std::string notes;
    host.processing = true;
    element.PostCommand(new NotingCommand(notes, 1));
    host.processing = false;
    element.PostCommand(new NotingCommand(notes, 2));
    EXPECT_EQ(notes, "PPU.");
    element.ServiceCommands();
    EXPECT_EQ(notes, "PPU..");
}

TEST(ElementCommands, AreDeletedWithTheirElement)
{
    Support::TestElementHost host;
    host.processing = true;
    std::string notes;
    {
        DSP::ElementDispatcher element({host, "Test", 48000.0F, 0});
        element.PostCommand(new NotingCommand(notes, 9));
        element.PostCommand(new NotingCommand(notes, 9));
        element.SetCommandsDisabled(true);
        element.ProcessRegion(0, 0, nullptr); // disabled: they stay where they are
        EXPECT_EQ(notes, "");
    }
    EXPECT_EQ(notes, "..");
    EXPECT_EQ(host.commandsUnderWay, 0);
}
