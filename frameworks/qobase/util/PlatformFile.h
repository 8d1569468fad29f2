// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

#include <cstdint>

/// What files need of the operating system, and all that a port has to write anew for them. The
/// rest of files and paths is the standard library's.
///
/// An `error` is the system's number of a failure and 0 for success. A path that is empty or holds
/// a NUL byte is refused here, so that no call acts on a shorter path than was meant. Signals that
/// the system raises for a failing write stay away from the host. Nothing throws. [any]
namespace Util::Platform {

constexpr int NoFile = -1; ///< the descriptor of no file

enum class Access {
    Read,
    Write,    ///< makes the file or empties it
    CreateNew ///< makes the file, and fails when there is one
};
struct Opened {
    int descriptor = NoFile;
    int error = 0;
};
/// A folder is refused, and a pipe that is to be read: whoever opens one waits for its writer.
/// `permissions` counts for a file that is made.
Opened OpenFile(const String& path, Access access, uint32_t permissions = 0666);
int CloseFile(int descriptor);

/// What was moved; less than asked for at the end of the file (error 0) or at a failure.
struct Moved {
    uint64_t bytes = 0;
    int error = 0;
};
Moved ReadBytes(int descriptor, void* buffer, uint64_t count);
Moved WriteBytes(int descriptor, const void* buffer, uint64_t count);
int SeekTo(int descriptor, uint64_t position);
/// Brings what was written to the disk, where the file system can.
int FlushToDisk(int descriptor);

enum class Kind { Regular, Folder, Pipe, Other };
struct Status {
    Kind kind = Kind::Other;
    uint64_t size = 0;            ///< bytes
    int64_t modificationTime = 0; ///< seconds since 1970
    uint32_t permissions = 0;     ///< the lower nine bits
    uint32_t user = 0;            ///< owner
    uint32_t group = 0;
    int error = 0; ///< nothing else counts when this isn't 0
};
Status GetStatus(const String& path); ///< of what a symbolic link leads to
Status GetStatus(int descriptor);
struct Position {
    uint64_t bytes = 0;
    int error = 0;
};
Position GetPosition(int descriptor);
/// 0 when this process may write the file.
int CheckWritable(const String& path);
/// Gives an open file the owner and the permissions of another one, as far as that is allowed.
int CopyOwnership(int descriptor, const Status& from);

int RemoveFile(const String& path);
/// Replaces a file at `target` in one step.
int RenameFile(const String& path, const String& target);
/// Fails with the system's "exists" (EEXIST) when anything is at `target`, in one step. On a file
/// system that can't do so, an empty file takes the name first; who is killed just then leaves it.
int RenameFileToNew(const String& path, const String& target);
/// Brings a changed list of files to the disk, where the file system can.
void FlushFolder(const String& folder);
/// `permissions` less what the user's mask takes.
int MakeFolder(const String& path, uint32_t permissions = 0777);

uint32_t GetProcessNumber();
/// As unpredictable as the system has them.
uint64_t GetRandomBits();
/// The user's home as the system's records have it; empty when they don't.
String GetRecordedHome();
/// The system's text for a failure, in English.
String DescribeError(int error);

} // namespace Util::Platform
