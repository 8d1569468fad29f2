// SPDX-License-Identifier: ISC
// What the hosts of several formats have alike.
#pragma once

#include <dlfcn.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <mutex>
#include <span>
#include <utility>
#include <vector>

namespace Contract {

/// A binary of a format, in memory as long as the object lives or somebody else keeps it there.
class Library {
public:
    // What it lacks shows at once, and what it brings stays its own.
    explicit Library(const char* path)
        : handle(dlopen(path, RTLD_NOW | RTLD_LOCAL))
    {
    }
    ~Library()
    {
        if (handle != nullptr) {
            dlclose(handle);
        }
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;

    /// Null when it isn't there.
    template <typename Pointer>
    Pointer Find(const char* symbol) const
    {
        return handle != nullptr ? reinterpret_cast<Pointer>(dlsym(handle, symbol)) : nullptr;
    }

private:
    void* const handle;
};

/// Values on their way from the UI thread to the next block, the last one of each parameter. [any]
class WaitingValues {
public:
    void Set(uint32_t index, float normalised)
    {
        const std::scoped_lock guard(mutex);
        values[index] = normalised;
    }
    std::map<uint32_t, float> Take()
    {
        const std::scoped_lock guard(mutex);
        return std::exchange(values, {});
    }

private:
    std::mutex mutex;
    std::map<uint32_t, float> values; // guarded by the mutex
};

/// A session, as formats keep it that save the bypass themselves, with this state of the module.
inline std::vector<uint8_t> MakeHeadedSession(std::span<const uint8_t> state)
{
    constexpr std::array<uint8_t, 6> Head = {'P', 'g', 'S', 's', 1, 0};
    std::vector<uint8_t> session(Head.size() + state.size());
    std::copy(state.begin(), state.end(), std::copy(Head.begin(), Head.end(), session.begin()));
    return session;
}

} // namespace Contract
