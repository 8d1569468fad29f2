// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/PlatformFile.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <ctime>
#include <limits>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <pwd.h>
#include <sys/random.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Util::Platform {
namespace {

constexpr uint32_t PermissionBits = 0777;
constexpr uint64_t LargestTransfer = 1ULL << 30; // one call of the system moves less than 2 GiB

/// Keeps the signals of a failing write (file too large, nobody reads) off this thread, because
/// they end a process that doesn't expect them. The host's handlers are not touched.
class WriteSignalGuard {
public:
    WriteSignalGuard() noexcept
    {
        sigemptyset(&signals);
        sigaddset(&signals, SIGXFSZ);
        sigaddset(&signals, SIGPIPE);
        sigset_t pending;
        sigpending(&pending);
        for (const int signal : {SIGXFSZ, SIGPIPE}) {
            if (sigismember(&pending, signal) == 1) {
                sigdelset(&signals, signal); // blocked by the host already, and its to take
            }
        }
        pthread_sigmask(SIG_BLOCK, &signals, &former);
    }
    WriteSignalGuard(const WriteSignalGuard&) = delete;
    WriteSignalGuard& operator=(const WriteSignalGuard&) = delete;
    ~WriteSignalGuard()
    {
        const int error = errno;
        constexpr timespec NoWait{};
        while (sigtimedwait(&signals, nullptr, &NoWait) > 0) {
        }
        pthread_sigmask(SIG_SETMASK, &former, nullptr);
        errno = error;
    }

private:
    sigset_t signals{};
    sigset_t former{};
};

bool IsUsable(const String& path)
{
    return !path.IsEmpty() && path.View().find('\0') == std::string_view::npos;
}

/// Runs `call` again while signals interrupt it; 0 or the error.
template <typename Call>
int Try(Call call)
{
    for (;;) {
        if (call() >= 0) {
            return 0;
        }
        if (errno != EINTR) {
            return errno;
        }
    }
}

int FlagsOf(Access access)
{
    switch (access) {
    case Access::Read:
        return O_RDONLY | O_NONBLOCK; // a pipe isn't waited for, but found out
    case Access::Write:
        return O_WRONLY | O_CREAT | O_TRUNC;
    case Access::CreateNew:
        return O_WRONLY | O_CREAT | O_EXCL;
    }
    return O_RDONLY;
}

Kind KindOf(mode_t mode)
{
    if (S_ISREG(mode)) {
        return Kind::Regular;
    }
    if (S_ISDIR(mode)) {
        return Kind::Folder;
    }
    return S_ISFIFO(mode) ? Kind::Pipe : Kind::Other;
}

Status StatusOf(const struct stat& record)
{
    return {.kind = KindOf(record.st_mode),
            .size = static_cast<uint64_t>(std::max<off_t>(record.st_size, 0)),
            .modificationTime = record.st_mtime,
            .permissions = record.st_mode & PermissionBits,
            .user = record.st_uid,
            .group = record.st_gid};
}

/// Calls `move(done, count)` until all is moved, nothing more comes, or it fails.
template <typename Move>
Moved MoveAll(uint64_t count, Move move)
{
    Moved moved;
    while (moved.bytes < count) {
        ssize_t step = 0;
        moved.error = Try([&] {
            const uint64_t wanted = std::min(count - moved.bytes, LargestTransfer);
            return step = move(moved.bytes, static_cast<size_t>(wanted));
        });
        if (moved.error != 0 || step == 0) {
            break;
        }
        moved.bytes += static_cast<uint64_t>(step);
    }
    return moved;
}

} // namespace

Opened OpenFile(const String& path, Access access, uint32_t permissions)
{
    if (!IsUsable(path)) {
        return {.error = EINVAL};
    }
    Opened opened;
    opened.error = Try([&] {
        return opened.descriptor =
                   open(path.c_str(), FlagsOf(access) | O_CLOEXEC | O_NOCTTY, permissions);
    });
    if (opened.error != 0 || access != Access::Read) {
        return opened;
    }
    // Reading is the one access that the system grants to a folder.
    const Kind kind = GetStatus(opened.descriptor).kind;
    if (kind == Kind::Folder || kind == Kind::Pipe) {
        CloseFile(opened.descriptor);
        return {.error = kind == Kind::Folder ? EISDIR : EINVAL};
    }
    return opened;
}

int CloseFile(int descriptor)
{
    // An interrupted close has closed the file; another try could hit somebody else's.
    return close(descriptor) == 0 || errno == EINTR ? 0 : errno;
}

Moved ReadBytes(int descriptor, void* buffer, uint64_t count)
{
    return MoveAll(count, [&](uint64_t done, size_t step) {
        return read(descriptor, static_cast<uint8_t*>(buffer) + done, step);
    });
}

Moved WriteBytes(int descriptor, const void* buffer, uint64_t count)
{
    const WriteSignalGuard guard;
    return MoveAll(count, [&](uint64_t done, size_t step) {
        return write(descriptor, static_cast<const uint8_t*>(buffer) + done, step);
    });
}

int SeekTo(int descriptor, uint64_t position)
{
    if (position > static_cast<uint64_t>(std::numeric_limits<off_t>::max())) {
        return EINVAL;
    }
    return Try([&] { return lseek(descriptor, static_cast<off_t>(position), SEEK_SET); });
}

int FlushToDisk(int descriptor)
{
    const int error = Try([&] { return fsync(descriptor); });
    return error == EINVAL || error == EROFS ? 0 : error; // a pipe, or no disk beneath it
}

Status GetStatus(const String& path)
{
    struct stat record {};
    if (!IsUsable(path)) {
        return {.error = EINVAL};
    }
    return stat(path.c_str(), &record) == 0 ? StatusOf(record) : Status{.error = errno};
}

Status GetStatus(int descriptor)
{
    struct stat record {};
    return fstat(descriptor, &record) == 0 ? StatusOf(record) : Status{.error = errno};
}

Position GetPosition(int descriptor)
{
    const off_t position = lseek(descriptor, 0, SEEK_CUR);
    return position >= 0 ? Position{.bytes = static_cast<uint64_t>(position)}
                         : Position{.error = errno};
}

int CheckWritable(const String& path)
{
    if (!IsUsable(path)) {
        return EINVAL;
    }
    return faccessat(AT_FDCWD, path.c_str(), W_OK, AT_EACCESS) == 0 ? 0 : errno;
}

int CopyOwnership(int descriptor, const Status& from)
{
    const Status own = GetStatus(descriptor);
    // Only an administrator may give files away; anybody else keeps the new one, as an editor does.
    // EINVAL: an owner that this process's user namespace doesn't know.
    if ((own.user != from.user || own.group != from.group) &&
        fchown(descriptor, from.user, from.group) != 0 && errno != EPERM && errno != EINVAL) {
        return errno;
    }
    // Some file systems have no permissions to change. The file then stays as it was made.
    static_cast<void>(fchmod(descriptor, from.permissions));
    return 0;
}

int RemoveFile(const String& path)
{
    if (!IsUsable(path)) {
        return EINVAL;
    }
    return unlink(path.c_str()) == 0 ? 0 : errno;
}

int RenameFile(const String& path, const String& target)
{
    if (!IsUsable(path) || !IsUsable(target)) {
        return EINVAL;
    }
    return rename(path.c_str(), target.c_str()) == 0 ? 0 : errno;
}

namespace {

int RenameOverPlaceholder(const String& path, const String& target)
{
    const Opened placeholder = OpenFile(target, Access::CreateNew);
    if (placeholder.error != 0) {
        return placeholder.error;
    }
    CloseFile(placeholder.descriptor);
    const int error = RenameFile(path, target);
    if (error != 0) {
        RemoveFile(target);
    }
    return error;
}

} // namespace

int RenameFileToNew(const String& path, const String& target)
{
    if (!IsUsable(path) || !IsUsable(target)) {
        return EINVAL;
    }
    if (renameat2(AT_FDCWD, path.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    // Some network file systems don't know the call; a second name is refused in one step as well.
    if (errno != EEXIST && link(path.c_str(), target.c_str()) == 0) {
        return unlink(path.c_str()) == 0 ? 0 : errno;
    }
    // And some have no second names. What else has failed fails there, too.
    return errno == EEXIST ? EEXIST : RenameOverPlaceholder(path, target);
}

void FlushFolder(const String& folder)
{
    const int descriptor =
        IsUsable(folder) ? open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC) : NoFile;
    if (descriptor == NoFile) {
        return;
    }
    FlushToDisk(descriptor);
    CloseFile(descriptor);
}

int MakeFolder(const String& path, uint32_t permissions)
{
    if (!IsUsable(path)) {
        return EINVAL;
    }
    return mkdir(path.c_str(), permissions) == 0 ? 0 : errno;
}

uint32_t GetProcessNumber()
{
    return static_cast<uint32_t>(getpid());
}

uint64_t GetRandomBits()
{
    uint64_t bits = 0;
    if (getrandom(&bits, sizeof bits, 0) == sizeof bits) {
        return bits;
    }
    // A kernel without the call: unlike in another process and from one call to the next.
    timespec now{};
    clock_gettime(CLOCK_MONOTONIC, &now);
    constexpr uint64_t OddMultiplier = 0x9E3779B97F4A7C15; // spreads the low bits over the word
    const auto ticks =
        static_cast<uint64_t>(now.tv_sec) * 1000000000 + static_cast<uint64_t>(now.tv_nsec);
    return (ticks ^ (uint64_t{GetProcessNumber()} << 40)) * OddMultiplier;
}

String GetRecordedHome()
{
    constexpr std::size_t RecordBytes = 16384;
    std::vector<char> texts(RecordBytes);
    passwd record{};
    passwd* found = nullptr;
    if (getpwuid_r(geteuid(), &record, texts.data(), texts.size(), &found) != 0 ||
        found == nullptr) {
        return {};
    }
    return {found->pw_dir};
}

String DescribeError(int error)
{
    return {std::generic_category().message(error)};
}

} // namespace Util::Platform
