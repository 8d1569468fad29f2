// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/StateFile.h"

#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/common/SessionBytes.h"

namespace Cli {

namespace {

constexpr size_t Piece = size_t{64} * 1024;

} // namespace

std::string ReadStateFile(const FileName& name)
{
    const FileDescriptor file = OpenForReading(name);
    std::string bytes;
    size_t count = Piece;
    // As far as there is something: a pipe doesn't show how much will come.
    while (count == Piece) {
        const size_t size = bytes.size();
        if (size > Wrapper::LongestSession) {
            throw FileError("is too large for a saved session");
        }
        bytes.resize(size + Piece);
        count = ReadFully(file.Get(), {bytes.data() + size, Piece});
        bytes.resize(size + count);
    }
    return bytes;
}

} // namespace Cli
