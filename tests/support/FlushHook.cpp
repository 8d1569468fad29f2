// SPDX-License-Identifier: ISC
#include "tests/support/FlushHook.h"

#include <cerrno>

#include <sys/syscall.h>
#include <unistd.h>

namespace Support {

std::function<void(int)> onFlush;
std::atomic<int> flushError = 0;
std::atomic<int> flushCount = 0;

} // namespace Support

// The program's own comes before that of the C library.
extern "C" int fsync(int fd)
{
    ++Support::flushCount;
    if (Support::onFlush) {
        Support::onFlush(fd);
    }
    errno = Support::flushError;
    return errno != 0 ? -1 : static_cast<int>(syscall(SYS_fsync, fd));
}
