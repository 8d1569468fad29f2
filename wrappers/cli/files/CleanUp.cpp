// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/CleanUp.h"

#include "wrappers/cli/files/FileError.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <atomic>
#include <cerrno>
#include <ctime>
#include <utility>

namespace Cli {

namespace {

constexpr std::array EndingSignals = {SIGINT, SIGTERM, SIGHUP, SIGPIPE};

enum class SlotState : int { Free, Claimed, Opening, Open };

struct Slot {
    std::atomic<SlotState> state = SlotState::Free;
    // Written while Claimed, read by the handler in the later states; the store of `state` pairs
    // with the handler's load.
    std::atomic<const char*> path = nullptr;
};

// One slot a file being written: more than any sensible number of jobs.
std::array<Slot, 1024> slots;
std::atomic<bool> isEnding = false;
static_assert(std::atomic<SlotState>::is_always_lock_free);
static_assert(std::atomic<const char*>::is_always_lock_free);

// Gives a file that another thread is just making the time to appear. Signals are blocked in the
// thread that makes it, so the wait never is for the thread that runs the handler.
void AwaitOpening(const Slot& slot)
{
    for (int tries = 0; tries < 1000 && slot.state == SlotState::Opening; ++tries) {
        const timespec pause{0, 1'000'000};
        ::nanosleep(&pause, nullptr);
    }
}

extern "C" void RemoveFilesAndEnd(int signalNumber)
{
    // A second signal while the first is at work changes nothing.
    if (isEnding.exchange(true)) {
        return;
    }
    for (const Slot& slot : slots) {
        AwaitOpening(slot);
        const SlotState state = slot.state;
        if (state == SlotState::Opening || state == SlotState::Open) {
            ::unlink(slot.path.load());
        }
    }
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    ::sigaction(signalNumber, &action, nullptr);
    ::raise(signalNumber);
}

sigset_t EndingSignalSet()
{
    sigset_t set;
    ::sigemptyset(&set);
    for (const int number : EndingSignals) {
        ::sigaddset(&set, number);
    }
    return set;
}

int ClaimSlot()
{
    for (size_t i = 0; i < slots.size(); ++i) {
        SlotState expected = SlotState::Free;
        if (slots[i].state.compare_exchange_strong(expected, SlotState::Claimed)) {
            return static_cast<int>(i);
        }
    }
    throw FileError("too many files are being written at once");
}

} // namespace

void InstallCleanUpOnSignals()
{
    // A limit on the size of files becomes a write that fails, and so a message.
    std::signal(SIGXFSZ, SIG_IGN);
    struct sigaction action = {};
    action.sa_handler = RemoveFilesAndEnd;
    for (const int number : EndingSignals) {
        struct sigaction former = {};
        ::sigaction(number, nullptr, &former);
        if (former.sa_handler != SIG_IGN) {
            ::sigaction(number, &action, nullptr);
        }
    }
}

ScopedCleanUp::ScopedCleanUp(std::string newPath)
    : path(std::move(newPath))
    , slot(ClaimSlot())
{
    slots[static_cast<size_t>(slot)].path = path.c_str();
}

ScopedCleanUp::~ScopedCleanUp()
{
    slots[static_cast<size_t>(slot)].state = SlotState::Free;
}

int ScopedCleanUp::Open(unsigned mode)
{
    const sigset_t blocked = EndingSignalSet();
    sigset_t former;
    ::pthread_sigmask(SIG_BLOCK, &blocked, &former);
    Slot& own = slots[static_cast<size_t>(slot)];
    own.state = SlotState::Opening;
    int descriptor = -1;
    int failure = EINTR;
    // The handler raises the flag before it looks at the slots: either this sees the flag, or the
    // handler sees the slot.
    if (!isEnding) {
        descriptor = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, mode);
        failure = errno;
    }
    own.state = descriptor >= 0 ? SlotState::Open : SlotState::Claimed;
    ::pthread_sigmask(SIG_SETMASK, &former, nullptr);
    errno = failure;
    return descriptor;
}

} // namespace Cli
