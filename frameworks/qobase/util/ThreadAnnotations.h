// SPDX-License-Identifier: ISC
#pragma once

/// Attributes of Clang's thread safety analysis (`-Wthread-safety`); nothing elsewhere.
#if defined(__clang__)
#define UTIL_THREAD_ANNOTATION(x) __attribute__((x))
#else
#define UTIL_THREAD_ANNOTATION(x)
#endif

/// The class is a lock.
#define UTIL_CAPABILITY(name) UTIL_THREAD_ANNOTATION(capability(name))
/// The class holds a lock from construction to destruction.
#define UTIL_SCOPED_CAPABILITY UTIL_THREAD_ANNOTATION(scoped_lockable)
/// The field is touched only under this lock.
#define UTIL_GUARDED_BY(lock) UTIL_THREAD_ANNOTATION(guarded_by(lock))
/// The function takes the lock, or its own object when no lock is named.
#define UTIL_ACQUIRE(...) UTIL_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
/// The function gives the lock back.
#define UTIL_RELEASE(...) UTIL_THREAD_ANNOTATION(release_capability(__VA_ARGS__))
/// The function takes the lock when it answers with the first argument.
#define UTIL_TRY_ACQUIRE(...) UTIL_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
/// The caller holds the lock.
#define UTIL_REQUIRES(...) UTIL_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
/// The function takes or gives back locks in a way that the analysis can't follow.
#define UTIL_NO_THREAD_SAFETY_ANALYSIS UTIL_THREAD_ANNOTATION(no_thread_safety_analysis)
