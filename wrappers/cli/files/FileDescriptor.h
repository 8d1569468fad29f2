// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/FileName.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Cli {

/// Owner of a file descriptor.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int number)
        : descriptor(number)
    {
    }
    ~FileDescriptor() { Close(); }
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor(other.Release())
    {
    }
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int Get() const { return descriptor; }
    bool IsOpen() const { return descriptor >= 0; }

    /// Gives up ownership.
    int Release();

    /// Closes now; true when the system had no complaint. Some file systems report a full disk
    /// only here.
    bool Close();

private:
    int descriptor = -1;
};

/// Opens a file, or standard input for a stream. Throws FileError.
FileDescriptor OpenForReading(const FileName& name);

/// Reads until `target` is full, the input ends or an error comes, whose number goes to `failure`;
/// returns the bytes read.
size_t ReadFully(int descriptor, std::span<char> target, int& failure);

/// The same, but throws FileError.
size_t ReadFully(int descriptor, std::span<char> target);

/// Writes all of `data`; returns 0 or the error number.
int WriteFully(int descriptor, std::string_view data);

/// A nameless file in the folder for temporary files ($TMPDIR or /tmp) that vanishes with its
/// descriptor, however the process ends. Throws FileError.
FileDescriptor OpenAnonymousFile();

/// Copies bytes [offset, offset + length) of the seekable `from` behind the end of what `to` has
/// been given so far. Throws FileError.
void CopyBytes(int from, int64_t offset, int64_t length, int to);

} // namespace Cli
