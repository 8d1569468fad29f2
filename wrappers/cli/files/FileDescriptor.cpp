// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/FileDescriptor.h"

#include "wrappers/cli/files/FileError.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

namespace Cli {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept
{
    if (this != &other) {
        Close();
        descriptor = other.Release();
    }
    return *this;
}

int FileDescriptor::Release()
{
    return std::exchange(descriptor, -1);
}

bool FileDescriptor::Close()
{
    const int number = Release();
    return number < 0 || ::close(number) == 0;
}

FileDescriptor OpenForReading(const FileName& name)
{
    FileDescriptor file(name.IsStream()
                            ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3)
                            : ::open(name.Get().c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file.IsOpen()) {
        throw FileError::FromErrno(errno);
    }
    return file;
}

size_t ReadFully(int descriptor, std::span<char> target, int& failure)
{
    size_t done = 0;
    while (done < target.size()) {
        const ssize_t count = ::read(descriptor, target.data() + done, target.size() - done);
        if (count == 0) {
            break;
        }
        if (count > 0) {
            done += static_cast<size_t>(count);
        } else if (errno != EINTR) {
            failure = errno;
            break;
        }
    }
    return done;
}

size_t ReadFully(int descriptor, std::span<char> target)
{
    int failure = 0;
    const size_t done = ReadFully(descriptor, target, failure);
    if (failure != 0) {
        throw FileError::FromErrno(failure);
    }
    return done;
}

int WriteFully(int descriptor, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t count = ::write(descriptor, data.data(), data.size());
        if (count >= 0) {
            data.remove_prefix(static_cast<size_t>(count));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

FileDescriptor OpenAnonymousFile()
{
    const char* chosen = std::getenv("TMPDIR"); // NOLINT(concurrency-mt-unsafe): nobody sets it
    const std::string folder = chosen != nullptr && *chosen != '\0' ? chosen : "/tmp";
    FileDescriptor file(::open(folder.c_str(), O_TMPFILE | O_RDWR | O_CLOEXEC, 0600));
    if (!file.IsOpen()) {
        // Not every file system makes nameless files.
        std::string name = folder + "/puffguard-XXXXXX";
        file = FileDescriptor(::mkostemp(name.data(), O_CLOEXEC));
        if (!file.IsOpen()) {
            throw FileError("no temporary file in " + folder + ": " +
                            FileError::FromErrno(errno).what());
        }
        ::unlink(name.c_str());
    }
    return file;
}

void CopyBytes(int from, int64_t offset, int64_t length, int to)
{
    std::vector<char> buffer(size_t{64} * 1024);
    while (length > 0) {
        const auto wanted =
            static_cast<size_t>(std::min<int64_t>(length, static_cast<int64_t>(buffer.size())));
        const ssize_t count = ::pread(from, buffer.data(), wanted, offset);
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count <= 0) {
            throw FileError::FromErrno(count < 0 ? errno : EIO);
        }
        const int failure = WriteFully(to, {buffer.data(), static_cast<size_t>(count)});
        if (failure != 0) {
            throw FileError::FromErrno(failure);
        }
        offset += count;
        length -= count;
    }
}

} // namespace Cli
