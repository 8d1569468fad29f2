// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/FileLock.h"

#include <fcntl.h>
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

/// Nothing can be locked here, now or later.
bool HasNoLocks(int error)
{
    return error == ENOLCK || error == EINVAL || error == ENOSYS || error == EOPNOTSUPP;
}

/// Locks of this kind belong to the open file, not to the process, and so part threads as well.
struct flock RangeOf(bool isLock, short type)
{
    struct flock range {};
    range.l_type = type;
    range.l_whence = SEEK_SET;
    range.l_start = isLock ? 0 : 1;
    range.l_len = 1;
    return range;
}

} // namespace

FileLock::FileLock(const String& path, std::chrono::milliseconds longestWait)
{
    constexpr std::chrono::microseconds Step(200);
    const auto end = std::chrono::steady_clock::now() + longestWait;
    while (Try(path) && !isHeld && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(Step);
    }
}

FileLock::~FileLock()
{
    // Said outright, since a process forked meanwhile would keep the lock with its copy.
    if (isHeld) {
        GiveBack(Byte::Lock);
    }
    if (hasTurn) {
        GiveBack(Byte::Turn);
    }
    Close();
}

bool FileLock::Try(const String& path)
{
    if (descriptor < 0) {
        descriptor = open(path.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0600);
    }
    if (descriptor < 0) {
        return errno == EINTR;
    }
    // Who waits for the lock has the turn, so that its last owner can't be back before.
    int error = hasTurn ? 0 : Take(Byte::Turn);
    hasTurn = error == 0;
    if (hasTurn) {
        error = Take(Byte::Lock);
    }
    isHeld = HasNoLocks(error);
    if (error != 0) {
        return error == EAGAIN || error == EACCES || error == EINTR;
    }
    GiveBack(Byte::Turn);
    hasTurn = false;
    isHeld = StillHasItsName(descriptor, path.c_str());
    if (!isHeld) {
        Close(); // the lock of a removed file keeps nobody out
    }
    return true;
}

int FileLock::Take(Byte byte)
{
    struct flock range = RangeOf(byte == Byte::Lock, F_WRLCK);
    return fcntl(descriptor, F_OFD_SETLK, &range) == 0 ? 0 : errno;
}

void FileLock::GiveBack(Byte byte)
{
    struct flock range = RangeOf(byte == Byte::Lock, F_UNLCK);
    fcntl(descriptor, F_OFD_SETLK, &range);
}

void FileLock::Close()
{
    if (descriptor >= 0) {
        close(descriptor);
    }
    descriptor = -1;
}

FileIdentity GetFileIdentity(const String& path)
{
    struct stat status {};
    if (stat(path.c_str(), &status) != 0) {
        return {.exists = errno != ENOENT && errno != ENOTDIR};
    }
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
