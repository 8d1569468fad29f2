// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/CleanUp.h"
#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileName.h"

#include <memory>
#include <string>
#include <string_view>

namespace Cli {

/// Whether a file that is there already may be replaced.
enum class Overwrite { Refuse, Allow };

/// Throws FileError when `target` exists and may not be replaced, or is no regular file.
void CheckNewFile(const std::string& target, Overwrite overwrite);

/// Makes the folder that `target` is to lie in, where it isn't there yet. Throws FileError, whose
/// text names the folder.
void MakeFolderFor(const FileName& target);

/// A file that appears under its name whole or not at all.
///
/// The bytes go to a hidden file beside the target; Commit() flushes that to the disk and renames
/// it. Without Commit(), and when a signal ends the process, the hidden file is removed; one of a
/// command that was killed goes when another is made beside it a day later. A target that is a
/// symbolic link is followed; owner and permissions of a replaced file are kept.
///
/// Standard output and targets that exist and are no regular file, such as a pipe or a device, take
/// the bytes as they come.
class OutputFile {
public:
    /// Throws FileError, also when the target exists and `overwrite` is Refuse.
    OutputFile(const FileName& newTarget, Overwrite newOverwrite);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;
    OutputFile(OutputFile&&) = delete;
    OutputFile& operator=(OutputFile&&) = delete;

    int GetDescriptor() const { return file.Get(); }

    /// True when the bytes go out as they come and can't be gone back to.
    bool IsStream() const { return isStream; }

    /// Puts the file under its name. A target that came into being meanwhile is replaced only when
    /// that was allowed. Throws FileError.
    void Commit();

    /// Makes `content` all of the file and puts it under its name. Throws FileError.
    void WriteWhole(std::string_view content);

private:
    bool OpenStream(const FileName& newTarget);
    void KeepAttributes() const;
    void Rename() const;

    std::string target; // symbolic links followed
    std::string temporary;
    Overwrite overwrite;
    std::unique_ptr<ScopedCleanUp> cleanUp;
    FileDescriptor file;
    bool isStream; // behind `file`, which its initialisation opens
    bool isCommitted = false;
};

} // namespace Cli
