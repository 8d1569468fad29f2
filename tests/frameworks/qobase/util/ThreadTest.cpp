// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Thread.h"
#include "frameworks/qobase/util/TaskQueue.h"
#include "frameworks/qobase/util/Timer.h"

#include <gtest/gtest.h>

#include <sys/resource.h>

#include <atomic>
#include <fstream>
#include <functional>
#include <future>
#include <string>
#include <thread>
#include <utility>

namespace {

/// A thread that runs what it is given.
class TestThread final : public Util::Thread {
public:
    using Work = std::function<void(const std::stop_token& stop)>;

    explicit TestThread(Work newWork,
                        const String& name = "Test",
                        Util::ThreadPriority priority = Util::ThreadPriority::Normal)
        : Thread(name, priority)
        , work(std::move(newWork))
    {
    }
    TestThread(const TestThread&) = delete;
    TestThread& operator=(const TestThread&) = delete;
    ~TestThread() override { Kill(); }

    std::atomic<int> finished = 0;

protected:
    void Run(const std::stop_token& stop) override
    {
        const Work held = work; // a thread that was let go outlives the object
        held(stop);
    }
    void OnFinished() override { ++finished; }

private:
    const Work work;
};

/// As the system's list of threads has it.
std::string ReadOwnName()
{
    std::ifstream file("/proc/thread-self/comm");
    std::string name;
    std::getline(file, name);
    return name;
}

TEST(Thread, RunsFinishesAndCanBeStartedAgain)
{
    std::promise<void> gate;
    std::atomic<int> runs = 0;
    TestThread thread([&, opened = gate.get_future().share()](const std::stop_token&) {
        opened.wait();
        ++runs;
        throw 1; // is dropped
    });
    EXPECT_TRUE(thread.Wait()); // was never started
    EXPECT_FALSE(thread.IsRunning());
    ASSERT_TRUE(thread.Start());
    EXPECT_TRUE(thread.IsRunning());
    EXPECT_FALSE(thread.Wait(1));
    gate.set_value();
    ASSERT_TRUE(thread.Start()); // waits for the first run
    EXPECT_GE(runs, 1);
    EXPECT_GE(thread.finished, 1);
    EXPECT_TRUE(thread.Wait());
    EXPECT_EQ(runs, 2);
    EXPECT_EQ(thread.finished, 2);
    EXPECT_FALSE(thread.IsRunning());
}

TEST(Thread, NeitherWaitsForItselfNorStartsItselfAnew)
{
    bool waited = true;
    bool started = true;
    TestThread* self = nullptr;
    TestThread thread([&](const std::stop_token&) {
        waited = self->Wait();
        started = self->Start();
    });
    self = &thread;
    ASSERT_TRUE(thread.Start());
    EXPECT_TRUE(thread.Wait());
    EXPECT_FALSE(waited);
    EXPECT_FALSE(started);
}

TEST(Thread, EndsWhenItIsKilledAndIsLetGoWhenItDoesNot)
{
    TestThread obedient([](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            std::this_thread::yield();
        }
    });
    ASSERT_TRUE(obedient.Start());
    obedient.Kill();
    EXPECT_FALSE(obedient.IsRunning());
    EXPECT_EQ(obedient.finished, 1);

    const auto gate = std::make_shared<std::promise<void>>();
    const auto left = std::make_shared<std::promise<void>>();
    {
        TestThread stubborn([gate, left](const std::stop_token&) {
            gate->get_future().wait();
            left->set_value_at_thread_exit();
        });
        ASSERT_TRUE(stubborn.Start());
        while (!stubborn.IsRunning()) {
            std::this_thread::yield();
        }
        stubborn.LetGo(20);
        EXPECT_FALSE(stubborn.IsRunning());
        EXPECT_TRUE(stubborn.Wait());
        EXPECT_EQ(stubborn.finished, 0);
    }
    gate->set_value(); // it finds its way out without the object
    left->get_future().wait();
}

TEST(Thread, IsKnownToTheSystemByNameAndPriority)
{
    std::string name;
    int nice = -1;
    const auto look = [&](const std::stop_token&) {
        name = ReadOwnName();
        nice = getpriority(PRIO_PROCESS, 0);
    };
    const int usual = getpriority(PRIO_PROCESS, 0);
    const std::pair<Util::ThreadPriority, int> cases[] = {{Util::ThreadPriority::Idle, 19},
                                                          {Util::ThreadPriority::Lowest, 10},
                                                          {Util::ThreadPriority::BelowNormal, 5}};
    for (const auto& [priority, expected] : cases) {
        // 14 bytes, and a letter of two bytes that there is room for one of.
        TestThread thread(look, "A thread's nam\u00e9", priority);
        ASSERT_TRUE(thread.Start());
        EXPECT_TRUE(thread.Wait());
        EXPECT_EQ(name, "A thread's nam");
        EXPECT_EQ(nice, std::max(usual, expected));
    }
    // Refused to most users, and then without consequence.
    TestThread urgent(look, "Urgent", Util::ThreadPriority::ProAudio);
    ASSERT_TRUE(urgent.Start());
    EXPECT_TRUE(urgent.Wait());
    EXPECT_EQ(name, "Urgent");
}

TEST(Thread, EachOfTheModuleHasAName)
{
    std::string ofTasks;
    Util::TaskQueue queue("Test Tasks", 1);
    EXPECT_TRUE(queue.Post([&ofTasks] { ofTasks = ReadOwnName(); }));
    queue.WaitUntilIdle();
    EXPECT_EQ(ofTasks, "Test Tasks");

    std::promise<std::string> ofTimer;
    std::atomic<bool> isFirst = true;
    const Util::PeriodicTimer timer(1, [&] {
        if (isFirst.exchange(false)) {
            ofTimer.set_value(ReadOwnName());
        }
    });
    EXPECT_EQ(ofTimer.get_future().get(), "Module Timer");
}

} // namespace
