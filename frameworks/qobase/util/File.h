// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/ByteStream.h"
#include "frameworks/qobase/util/Bytes.h"

#include <cstdint>

namespace Util {

/// A path with explicit open, read, write and seek. Never throws; failures carry a text for a
/// person, the category "File" as their detail, and the path and the system's reason as arguments.
/// An open file is closed with the object. One object belongs to one thread.
class File final : public ByteStream {
public:
    struct ErrorKind;
    using Error = BasicError<ErrorKind>;

    /// The numbers are those that callers store.
    enum class Mode : uint32_t { Read = 2, Write = 4 };

    explicit File(String newPath);
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    File(File&& other) noexcept;
    File& operator=(File&& other) noexcept;
    ~File() override;

    const String& GetPath() const { return path; }
    bool IsOpen() const { return descriptor >= 0; }

    /// Write makes the file or empties it. A file that is open is closed first. A folder is
    /// refused, and a pipe that is to be read.
    Expected<void> Open(Mode mode);
    Expected<void> Read(void* buffer, uint64_t count) override;
    Expected<void> Write(const void* buffer, uint64_t count) override;
    Expected<void> Seek(uint64_t position) override;
    /// The file is closed whatever comes back. Success when it wasn't open.
    Expected<void> Close();
    /// Brings what was written to the disk.
    Expected<void> Flush() override;

    /// Of an open regular file.
    Expected<uint64_t> GetSize() const override;
    Expected<uint64_t> GetPosition() const override;
    /// Seconds since 1970; of the path, open or not.
    Expected<int64_t> GetModificationTime() const;
    /// Also true for a folder.
    bool Exists() const;
    /// Of the path, open or not. No folder is removed.
    Expected<void> Remove();
    /// Renames the file, replacing a file at `target`. The object keeps its old path.
    Expected<void> Move(const String& target);

    /// A failure at `path`; `systemError` is the system's number of the reason, 0 when it gave
    /// none, as at the end of a file. [any]
    static Error MakeError(const String& text, const String& path, int systemError);

private:
    Expected<void> Result(int systemError, const char* text) const;

    String path;
    int descriptor = -1; // the runtime library's number of the open file
};

/// Everything in the file at `path`; a failure when it is larger than `maxBytes`. What is no
/// regular file is refused: a pipe could keep its reader waiting for ever. [ui]
Expected<Bytes> ReadWholeFile(const String& path, uint64_t maxBytes = MaxClaimedBytes);

/// Puts `bytes` in the place of the file at `path`, whole or not at all: a temporary beside it is
/// written, flushed to the disk and renamed. On failure the former file stays and the temporary
/// goes. Follows a symbolic link; keeps the former file's permissions; refuses what is no regular
/// file, and a file that this user may not write. [ui]
Expected<void> ReplaceWholeFile(const String& path, ByteSpan bytes);

/// The same for a path without a file. False when there is anything already, which then stays: no
/// other process can come in between the look and the making. A symbolic link counts as there.
/// Where the file system has no better way, an empty file has the name for a moment. [ui]
Expected<bool> CreateWholeFile(const String& path, ByteSpan bytes);

/// Renames the file to `wanted`, or where there is one already, with "-2", "-3" and so on behind
/// it: nothing is replaced. [ui]
Expected<void> SetFileAside(const String& path, const String& wanted);

} // namespace Util
