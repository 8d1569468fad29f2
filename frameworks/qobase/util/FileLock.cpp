// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/FileLock.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace Util {

namespace {

/// False when the open file's name leads to another file by now, or to none.
bool StillHasItsName(int descriptor, const char* path)
{
    struct stat open {};
    struct stat named {};
    return fstat(descriptor, &open) == 0 && stat(path, &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

} // namespace

FileLock::FileLock(const String& path, std::chrono::milliseconds longestWait)
{
    // Short steps: a busy owner leaves only moments between one lock and its next.
    constexpr std::chrono::microseconds Step(200);
    const auto end = std::chrono::steady_clock::now() + longestWait;
    while (Try(path) && !isHeld && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(Step);
}

FileLock::~FileLock()
{
    // Said outright, since a process forked meanwhile would keep the lock with its copy.
    if (isHeld)
        flock(descriptor, LOCK_UN);
    Close();
}

bool FileLock::Try(const String& path)
{
    if (descriptor < 0)
        descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    if (descriptor < 0)
        return errno == EINTR;
    if (flock(descriptor, LOCK_EX | LOCK_NB) != 0)
        return errno == EWOULDBLOCK || errno == EINTR;
    isHeld = StillHasItsName(descriptor, path.c_str());
    if (!isHeld)
        Close(); // the lock of a removed file keeps nobody out
    return true;
}

void FileLock::Close()
{
    if (descriptor >= 0)
        close(descriptor);
    descriptor = -1;
}

FileIdentity GetFileIdentity(const String& path)
{
    struct stat status {};
    if (stat(path.c_str(), &status) != 0)
        return {.exists = errno != ENOENT && errno != ENOTDIR};
    constexpr int64_t NanosecondsPerSecond = 1'000'000'000;
    return {.exists = true,
            .isRegular = S_ISREG(status.st_mode),
            .device = status.st_dev,
            .number = status.st_ino,
            .size = static_cast<uint64_t>(status.st_size),
            .modificationTime =
                status.st_mtim.tv_sec * NanosecondsPerSecond + status.st_mtim.tv_nsec};
}

} // namespace Util
