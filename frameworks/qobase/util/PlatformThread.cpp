// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/PlatformThread.h"

#include "frameworks/qobase/util/Utf8.h"

#include <algorithm>
#include <array>
#include <utility>

#include <dlfcn.h>
#include <pthread.h>
#include <sched.h>
#include <sys/resource.h>

namespace Util {
namespace {

constexpr std::size_t LongestName = 15;

// Nice values of Idle to AboveNormal. None is below 0, which only an administrator may ask for.
constexpr std::array<int, 5> NiceValues = {19, 10, 5, 0, 0};

} // namespace

void Platform::NameThread(const String& name) noexcept
{
    if (name.IsEmpty()) {
        return;
    }
    const std::string_view shortName = Utf8::Cut(name.View(), LongestName);
    std::array<char, LongestName + 1> text{};
    std::copy(shortName.begin(), shortName.end(), text.begin());
    pthread_setname_np(pthread_self(), text.data());
}

void Platform::PrioritiseThread(ThreadPriority priority) noexcept
{
    const auto level = static_cast<std::size_t>(priority);
    if (level < NiceValues.size()) {
        // On Linux 0 is the calling thread, not its process.
        setpriority(PRIO_PROCESS, 0, NiceValues[level]);
        return;
    }
    sched_param urgency{};
    urgency.sched_priority = static_cast<int>(level - NiceValues.size()) + 1;
    pthread_setschedparam(pthread_self(), SCHED_RR, &urgency);
}

void ModuleReference::Take() noexcept
{
    static const char Anchor = 0;
    Dl_info info{};
    if (handle == nullptr && dladdr(&Anchor, &info) != 0) {
        handle = dlopen(info.dli_fname, RTLD_LAZY | RTLD_NOLOAD);
    }
}

void ModuleReference::Release() noexcept
{
    if (void* taken = std::exchange(handle, nullptr)) {
        dlclose(taken);
    }
}

} // namespace Util
