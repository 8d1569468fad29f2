// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <chrono>
#include <cstdint>

namespace Util {

/// What processes need to share a small file: a lock between them, and a way to see that the file
/// was replaced. Nothing here throws.

/// An advisory lock between processes and threads, by a file of its own. The file is made when
/// missing and left behind; one that somebody removes while it is held or waited for does no harm.
/// A process that ends leaves its locks. One that takes the lock again and again does not starve
/// another that waits. Where the file system has no locks, everybody holds it at once: files that
/// are replaced whole stay whole, though of two changes at a time one is lost. [ui]
class FileLock {
public:
    /// Waits for `longestWait` at most, so that a process that hangs with the lock hangs no other.
    FileLock(const String& path, std::chrono::milliseconds longestWait);
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

    bool IsHeld() const { return isHeld; }

private:
    enum class Byte { Lock, Turn };

    /// One step: false when waiting longer makes no sense.
    bool Try(const String& path);
    /// Takes a byte of the file, or gives it back: 0, or the system's error.
    int Take(Byte byte);
    void GiveBack(Byte byte);
    void Close();

    int descriptor = -1;
    bool hasTurn = false;
    bool isHeld = false;
};

/// Tells one state of a file from the next.
struct FileIdentity {
    bool exists = false;
    bool isRegular = false;
    uint64_t device = 0;
    uint64_t number = 0;          ///< of the file on its device
    uint64_t size = 0;            ///< bytes
    int64_t modificationTime = 0; ///< nanoseconds since 1970, in steps of the system's clock

    bool operator==(const FileIdentity& other) const = default;
};

/// Of what a symbolic link leads to. A file that can't be looked at exists, but isn't regular.
/// [any]
FileIdentity GetFileIdentity(const String& path);

} // namespace Util
