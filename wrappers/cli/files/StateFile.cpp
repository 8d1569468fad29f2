// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/StateFile.h"

#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/common/SessionBytes.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>

namespace Cli {

namespace {

constexpr size_t piece = size_t{64} * 1024;

FileDescriptor Open(const std::string& path)
{
    FileDescriptor file(path == "-" ? ::fcntl(STDIN_FILENO, F_DUPFD_CLOEXEC, 3)
                                    : ::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOCTTY));
    if (!file.IsOpen()) {
        throw FileError::FromErrno(errno);
    }
    return file;
}

} // namespace

std::string ReadStateFile(const std::string& path)
{
    const FileDescriptor file = Open(path);
    std::string bytes;
    size_t count = piece;
    // As far as there is something: a pipe doesn't say how much will come.
    while (count == piece) {
        const size_t size = bytes.size();
        if (size > Wrapper::LongestSession) {
            throw FileError("is too large for a saved session");
        }
        bytes.resize(size + piece);
        count = ReadFully(file.Get(), {bytes.data() + size, piece});
        bytes.resize(size + count);
    }
    return bytes;
}

} // namespace Cli
