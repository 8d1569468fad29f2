// SPDX-License-Identifier: ISC
// A module that does on request what audio code must not, so that the tests can show that they
// would see it: loaded as the product is.
#include <unistd.h>

#include <condition_variable>
#include <cstdlib>
#include <mutex>
#include <new>
#include <string>
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
    const std::string_view what = name;
    if (what == "malloc") {
        kept = std::malloc(16);
    } else if (what == "free") {
        std::free(std::exchange(kept, nullptr));
    } else if (what == "new") {
        kept = ::operator new(16);
    } else if (what == "delete") {
        ::operator delete(std::exchange(kept, nullptr));
    } else if (what == "aligned new") {
        kept = ::operator new (64, std::align_val_t{64});
    } else if (what == "lock") {
        const std::scoped_lock guard(plainMutex);
    } else if (what == "try lock") {
        const std::unique_lock attempt(plainMutex, std::try_to_lock);
    } else if (what == "notify") {
        plainCondition.notify_one();
    } else if (what == "yield") {
        std::this_thread::yield();
    } else if (what == "write") {
        return ::write(-1, "", 0) == -1;
    } else if (what != "nothing") {
        return false;
    }
    return true;
}
