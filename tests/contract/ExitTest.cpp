// SPDX-License-Identifier: ISC
// A process that ends while instances live: children do so on purpose, each in another way.
#include "tests/support/Child.h"
#include "tests/support/ModuleHost.h"

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <future>
#include <memory>
#include <thread>

namespace {

using namespace TestHost;

#ifdef PUFFGUARD_SANITIZED
constexpr unsigned LimitSeconds = 20; // a sanitizer's report at the end takes most of it
#else
constexpr unsigned LimitSeconds = 1;
#endif

/// Of the process, and nobody's to destroy.
Instance& MakeInstance()
{
    static Instance* instance = nullptr;
    instance = new Instance(44100.0F, 1);
    return *instance;
}

/// Audio has run, and the instance's tick is on its way.
void RunAudio(Instance& instance)
{
    Audio audio = MakeSpeechLike(1, 4096, 44100.0F);
    instance.Run(audio, 512);
}

/// From here on the kernel counts, and ends what takes longer.
[[noreturn]] void EndProcess()
{
    alarm(LimitSeconds);
    std::exit(0); // NOLINT(concurrency-mt-unsafe): ending beside other threads is what is tested
}

/// Work in a process that comes to a good end with it.
void ExpectEnd(const std::function<void()>& work)
{
    Support::Child child([&] {
        work();
        EndProcess();
    });
    EXPECT_EQ(child.Wait(), 0);
}

TEST(EndOfProcess, WithALiveInstance)
{
    ExpectEnd([] { RunAudio(MakeInstance()); });
}

TEST(EndOfProcess, WhenAnExitHandlerUnloadsTheModule)
{
    ExpectEnd([] {
        RunAudio(MakeInstance());
        std::atexit([] {
            void* module = dlopen(PUFFGUARD_MODULE, RTLD_NOW | RTLD_NOLOAD);
            dlclose(module);
            dlclose(module); // the host's own reference
            usleep(300'000); // time enough for a tick into what is gone
        });
    });
}

TEST(EndOfProcess, WhenTheInstanceIsDestroyedAfterTheModulesOwnObjects)
{
    ExpectEnd([] {
        static std::unique_ptr<Instance> instance; // older than any object of the module
        instance = std::make_unique<Instance>(44100.0F, 1);
        RunAudio(*instance);
    });
}

TEST(EndOfProcess, WhileTheHostNeverReturnsFromATick)
{
    ExpectEnd([] {
        static std::promise<void> entered;
        Instance& instance = MakeInstance();
        instance.onHostCall = [main = std::this_thread::get_id()](const HostCall& call) {
            if (call.opcode == HostOpcodeLatencyChanged && std::this_thread::get_id() != main) {
                entered.set_value();
                for (;;) {
                    pause();
                }
            }
        };
        RunAudio(instance);
        instance.SetElement(ElementLatencyScaling, 0.0F, Process); // the tick notifies the UI side
        entered.get_future().wait();
    });
}

} // namespace
