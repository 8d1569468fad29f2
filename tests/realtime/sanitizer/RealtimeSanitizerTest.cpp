// SPDX-License-Identifier: ISC
// The process call of every format under the real-time sanitizer: the wrappers and the module mark
// theirs as non-blocking, and whatever could wait inside of one ends the program with a report.
#include "tests/contract/support/FormatTest.h"

#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/Realtime.h"

#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <mutex>
#include <string_view>
#include <utility>

namespace {

constexpr uint32_t Longest = 4096;
constexpr int ExitOfReport = 43; // the sanitizer's own

class RealtimeSanitizer : public Contract::FormatTest {};

TEST_P(RealtimeSanitizer, FindsNothingWhileEveryControlMoves)
{
    for (const uint32_t channels : {1U, 2U, 6U}) {
        auto host = Make(Rate, channels);
        for (const uint32_t block : {1U, 64U, 480U, Longest}) {
            const uint32_t every = block < 64 ? 500 : 1;
            const Contract::Audio input =
                Contract::MakeSpeech(Rate, channels, block < 64 ? 0.1 : 0.8);
            uint32_t number = 0;
            Contract::Play(*host, input, [&] {
                if (const uint32_t step = number / every; number++ % every == 0) {
                    host->SetParameter(step % host->CountParameters(),
                                       static_cast<float>(step % 9) / 8.0F);
                }
                return block;
            });
        }
    }
}

/// A page that makes whoever touches it first call the system.
class Trap {
public:
    Trap()
        : size(static_cast<size_t>(sysconf(_SC_PAGESIZE)))
        , page(mmap(nullptr, size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
        current = this;
        struct sigaction action = {};
        action.sa_handler = [](int) {
            mprotect(current->page, current->size, PROT_READ | PROT_WRITE);
        };
        sigaction(SIGSEGV, &action, nullptr);
    }
    Trap(const Trap&) = delete;
    Trap& operator=(const Trap&) = delete;
    Trap(Trap&&) = delete;
    Trap& operator=(Trap&&) = delete;
    ~Trap() { munmap(page, size); }

    float* Get() const { return static_cast<float*>(page); }

private:
    static inline Trap* current = nullptr;
    size_t size;
    void* page;
};

// A wrapper copies between different memory itself; the module is given one memory.
TEST_P(RealtimeSanitizer, WatchesFromTheFirstTouchOfTheHostsMemory)
{
    // The module has a thread of its own, which a mere fork would leave behind.
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    auto host = Make(Rate, 1);
    std::vector<float> elsewhere(64);
    const auto run = [&](bool isInPlace) {
        const Trap trap;
        float* const input = trap.Get();
        float* const output = isInPlace ? trap.Get() : elsewhere.data();
        host->Process(&input, &output, 64);
        _exit(0);
    };
    EXPECT_EXIT(run(true), testing::ExitedWithCode(ExitOfReport), "mprotect");
    if (std::string_view(GetParam().name) != "Entry") {
        EXPECT_EXIT(run(false), testing::ExitedWithCode(ExitOfReport), "mprotect");
    }
}

CONTRACT_FORMATS(RealtimeSanitizer);

void CallWatched(void (*function)()) noexcept UTIL_NONBLOCKING
{
    function();
}

std::mutex plainMutex;
void* volatile kept = nullptr;

/// What the audio side must not do, and what the report then names.
struct Misdeed {
    const char* report;
    void (*commit)();
};

TEST(RealtimeSanitizerReport, NamesWhatMayWait)
{
    const Misdeed misdeeds[] = {
        {"malloc", [] { kept = std::malloc(16); }},
        {"free", [] { std::free(std::exchange(kept, nullptr)); }},
        {"malloc", [] { kept = ::operator new(16); }},
        {"pthread_mutex_lock", [] { const std::scoped_lock guard(plainMutex); }},
    };
    kept = std::malloc(16);
    for (const auto& [report, commit] : misdeeds) {
        EXPECT_EXIT(CallWatched(commit), testing::ExitedWithCode(ExitOfReport), report);
    }
}

TEST(RealtimeSanitizerReport, PassesOverNamedLocksButNotOverWhatIsDoneUnderThem)
{
    static Util::CriticalSection section("a name");
    CallWatched([] {
        section.Enter();
        section.Leave();
    });
    EXPECT_EXIT(CallWatched([] {
                    const Util::CriticalSectionGuard guard(section);
                    kept = std::malloc(16);
                }),
                testing::ExitedWithCode(ExitOfReport),
                "malloc");
}

} // namespace
