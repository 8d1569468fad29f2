// SPDX-License-Identifier: ISC
#include "tests/realtime/Probe.h"

#include <dlfcn.h>
#include <pthread.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <ucontext.h>

#include <algorithm>
#include <cerrno>
#include <csignal>

// The C library's own names of its heap functions, for the stand-ins to call on.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t align, std::size_t size);
void __libc_free(void* memory);
}

namespace {

// Plain data with constant initial values: reached without a call, at any time of a thread's life.
thread_local Probe::Report* current = nullptr;
// What the kernel reads before each system call of this thread: 1 reports it instead.
thread_local volatile char dispatch = 0;

void CountHeap() noexcept
{
    if (current != nullptr) {
        ++current->heapCalls;
    }
}

void CountWait() noexcept
{
    if (current != nullptr) {
        ++current->waits;
    }
}

void CountLock(const void* lock) noexcept
{
    if (current == nullptr) {
        return;
    }
    ++current->lockCalls;
    auto* const end = current->locks.begin() + static_cast<std::ptrdiff_t>(current->lockCount);
    if (std::find(current->locks.begin(), end, lock) == end &&
        current->lockCount < Probe::Report::MaxLocks) {
        current->locks[current->lockCount++] = lock;
    }
}

/// Lets this thread's system calls pass while it lives: the slow path of a lock makes some.
class PassSystemCalls {
public:
    PassSystemCalls() noexcept
        : before(dispatch)
    {
        dispatch = 0;
    }
    PassSystemCalls(const PassSystemCalls&) = delete;
    PassSystemCalls(PassSystemCalls&&) = delete;
    PassSystemCalls& operator=(const PassSystemCalls&) = delete;
    PassSystemCalls& operator=(PassSystemCalls&&) = delete;
    ~PassSystemCalls() { dispatch = before; }

private:
    char before;
};

/// The function that this program stands in front of.
template <typename Function>
Function* FindNext(const char* name) noexcept
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

#if defined(__x86_64__) && defined(PR_SET_SYSCALL_USER_DISPATCH)

/// Instead of a system call of a watched thread. The call is then made all the same: the thread
/// goes back to its instruction, which is two bytes long, and the watch is over.
void OnSystemCall(int, siginfo_t* info, void* context)
{
    dispatch = 0;
    // In a virtual machine the clock may be no memory to be read, but a call.
    if (current != nullptr && info->si_syscall != SYS_clock_gettime) {
        current->systemCalls = 1;
        current->systemCall = info->si_syscall;
    }
    auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
    registers[REG_RAX] = info->si_syscall;
    registers[REG_RIP] -= 2;
}

bool StartReporting() noexcept
{
    struct sigaction action {};
    action.sa_sigaction = &OnSystemCall;
    action.sa_flags = SA_SIGINFO;
    if (sigaction(SIGSYS, &action, nullptr) != 0) {
        return false;
    }
    return prctl(PR_SET_SYSCALL_USER_DISPATCH, PR_SYS_DISPATCH_ON, 0, 0, &dispatch) == 0;
}

#else

bool StartReporting() noexcept
{
    return false;
}

#endif

} // namespace

// Dynamic symbols of the program come before those of every library.
#define STAND_IN extern "C" __attribute__((visibility("default")))

#define STAND_IN_FOR_HEAP(Result, name, parameters, call)                                          \
    STAND_IN Result name parameters noexcept                                                       \
    {                                                                                              \
        CountHeap();                                                                               \
        return call;                                                                               \
    }

STAND_IN_FOR_HEAP(void*, malloc, (std::size_t size), __libc_malloc(size))
STAND_IN_FOR_HEAP(void*, calloc, (std::size_t n, std::size_t size), __libc_calloc(n, size))
STAND_IN_FOR_HEAP(void*, realloc, (void* old, std::size_t size), __libc_realloc(old, size))
STAND_IN_FOR_HEAP(void, free, (void* memory), __libc_free(memory))
STAND_IN_FOR_HEAP(void*, memalign, (std::size_t a, std::size_t size), __libc_memalign(a, size))
STAND_IN_FOR_HEAP(void*, aligned_alloc, (std::size_t a, std::size_t size), __libc_memalign(a, size))

STAND_IN int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept
{
    CountHeap();
    *memory = __libc_memalign(alignment, size);
    return *memory != nullptr ? 0 : ENOMEM;
}

STAND_IN int pthread_mutex_lock(pthread_mutex_t* mutex) noexcept
{
    static auto* const Next = FindNext<int(pthread_mutex_t*)>("pthread_mutex_lock");
    CountLock(mutex);
    const PassSystemCalls pass;
    return Next(mutex);
}

STAND_IN int pthread_mutex_trylock(pthread_mutex_t* mutex) noexcept
{
    static auto* const Next = FindNext<int(pthread_mutex_t*)>("pthread_mutex_trylock");
    CountLock(mutex);
    return Next(mutex);
}

STAND_IN int pthread_mutex_unlock(pthread_mutex_t* mutex) noexcept
{
    static auto* const Next = FindNext<int(pthread_mutex_t*)>("pthread_mutex_unlock");
    const PassSystemCalls pass;
    return Next(mutex);
}

// NOLINTBEGIN(bugprone-macro-parentheses): Object is a type
#define STAND_IN_FOR_WAIT(name, Object)                                                            \
    STAND_IN int name(Object* object) noexcept                                                     \
    {                                                                                              \
        static auto* const Next = FindNext<int(Object*)>(#name);                                   \
        CountWait();                                                                               \
        return Next(object);                                                                       \
    }
// NOLINTEND(bugprone-macro-parentheses)

STAND_IN_FOR_WAIT(pthread_cond_signal, pthread_cond_t)
STAND_IN_FOR_WAIT(pthread_cond_broadcast, pthread_cond_t)
STAND_IN_FOR_WAIT(pthread_rwlock_rdlock, pthread_rwlock_t)
STAND_IN_FOR_WAIT(pthread_rwlock_wrlock, pthread_rwlock_t)

STAND_IN int pthread_cond_wait(pthread_cond_t* condition, pthread_mutex_t* mutex)
{
    static auto* const Next = FindNext<int(pthread_cond_t*, pthread_mutex_t*)>("pthread_cond_wait");
    CountWait();
    return Next(condition, mutex);
}

namespace Probe {

bool CanSeeSystemCalls()
{
    thread_local const bool Can = StartReporting();
    return Can;
}

Watch::Watch()
{
    const bool reporting = CanSeeSystemCalls();
    current = &report;
    dispatch = reporting ? 1 : 0;
}

Watch::~Watch()
{
    Stop();
}

const Report& Watch::Stop()
{
    dispatch = 0;
    current = nullptr;
    return report;
}

} // namespace Probe
