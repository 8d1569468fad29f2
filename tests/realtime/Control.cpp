// SPDX-License-Identifier: ISC
// A module that does on request what audio code must not, so that the tests can show that they
// would see it: loaded as the product is.
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <new>
#include <string_view>
#include <thread>
#include <utility>

namespace {

std::mutex plainMutex;
std::condition_variable plainCondition;
void* kept = nullptr;

} // namespace

/// Does the thing of this name; false when it doesn't know it.
extern "C" __attribute__((visibility("default"))) bool Misbehave(const char* name)
{
    static constexpr std::pair<std::string_view, void (*)()> Deeds[] = {
        {"nothing", [] {}},
        {"malloc", [] { kept = std::malloc(16); }},
        {"free", [] { std::free(std::exchange(kept, nullptr)); }},
        {"new", [] { kept = ::operator new(16); }},
        {"delete", [] { ::operator delete(std::exchange(kept, nullptr)); }},
        {"aligned new", [] { kept = ::operator new (64, std::align_val_t{64}); }},
        {"lock", [] { const std::scoped_lock guard(plainMutex); }},
        {"try lock", [] { const std::unique_lock attempt(plainMutex, std::try_to_lock); }},
        {"notify", [] { plainCondition.notify_one(); }},
        {"yield", [] { std::this_thread::yield(); }},
        {"write", [] { static_cast<void>(::write(-1, "", 0)); }},
    };
    for (const auto& [what, commit] : Deeds) {
        if (what == name) {
            commit();
            return true;
        }
    }
    return false;
}
