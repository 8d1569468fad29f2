// SPDX-License-Identifier: ISC
#include "tests/realtime/Clean.h"

#include "frameworks/qobase/util/CriticalSection.h"

#include <gtest/gtest.h>

namespace Realtime {

std::string NameOf(const void* lock)
{
    // The lock stands behind the name, as a test of the probe shows.
    const auto* section = static_cast<const std::byte*>(lock) - sizeof(String);
    return reinterpret_cast<const Util::CriticalSection*>(section)->GetName().ToStdString();
}

bool IsStated(std::string_view name)
{
    return name == "PluginCore Processing CritSec" || name == "PluginMemoryPool Critical Section" ||
           name.ends_with("Process FIFO Read Lock") || name.ends_with("UI FIFO Write Lock");
}

bool IsRecursive(const void* lock)
{
    // Set when the lock is made and not changed since.
    return static_cast<const pthread_mutex_t*>(lock)->__data.__kind == PTHREAD_MUTEX_RECURSIVE;
}

void ExpectClean(const Probe::Report& report, const std::string& where)
{
    EXPECT_EQ(report.heapCalls, 0U) << where;
    EXPECT_EQ(report.waits, 0U) << where;
    EXPECT_EQ(report.systemCalls, 0U) << where << ": system call " << report.systemCall;
    for (std::size_t i = 0; i < report.lockCount; ++i) {
        const void* lock = report.locks[i];
        if (!IsRecursive(lock)) {
            ADD_FAILURE() << where << ": a plain lock";
        } else {
            EXPECT_TRUE(IsStated(NameOf(lock))) << where << ": \"" << NameOf(lock) << '"';
        }
    }
}

} // namespace Realtime
