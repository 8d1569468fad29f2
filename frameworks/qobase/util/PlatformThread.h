// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>

/// What the platform knows of threads beyond the standard. [any], but not on the processing side.
namespace Util {

/// How readily the system runs a thread beside the others of its process.
enum class ThreadPriority : uint32_t {
    Idle = 0,
    Lowest = 1,
    BelowNormal = 2,
    Normal = 3,
    AboveNormal = 4,
    Highest = 5,
    TimeCritical = 6,
    ProAudio = 7 ///< the class of threads that audio must not wait for
};

namespace Platform {

/// The calling thread's name in debuggers and lists of threads; cut where the system has room for
/// less (15 bytes on Linux). An empty one leaves what is there.
void NameThread(const String& name) noexcept;
/// What the system refuses leaves the calling thread as it is. Highest and above ask for real time
/// scheduling, which most users may not have.
void PrioritiseThread(ThreadPriority priority) noexcept;

/// From here to the end of the scope the calling thread may use COM objects, where it is `wanted`
/// and the platform has such. This one has none.
class ComScope {
public:
    explicit ComScope(bool /*wanted*/) noexcept {}
};

} // namespace Platform

/// Keeps the loaded file that this code is in from being unloaded, from Take() to Release(). What
/// isn't released keeps it for good. One thread at a time.
class ModuleReference {
public:
    void Take() noexcept;
    void Release() noexcept;

private:
    void* handle = nullptr; // null: none taken, or this is the program itself
};

} // namespace Util
