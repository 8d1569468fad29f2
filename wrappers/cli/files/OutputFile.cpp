// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/OutputFile.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/files/HiddenFiles.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>

namespace Cli {

namespace {

constexpr const char* ExistsText = "exists already; --force overwrites it";

std::string FollowLinks(const std::string& target)
{
    std::error_code failure;
    const auto resolved = std::filesystem::canonical(target, failure);
    return failure ? target : resolved.string();
}

} // namespace

void CheckNewFile(const std::string& target, Overwrite overwrite)
{
    struct stat status = {};
    if (::lstat(target.c_str(), &status) != 0) {
        return;
    }
    if (S_ISDIR(status.st_mode)) {
        throw FileError("is a directory");
    }
    if (overwrite == Overwrite::Refuse) {
        throw FileError(ExistsText);
    }
    if (::stat(target.c_str(), &status) == 0 && !S_ISREG(status.st_mode)) {
        throw FileError("is no regular file");
    }
}

void MakeFolderFor(const FileName& target)
{
    const auto folder = std::filesystem::path(target.Get()).parent_path();
    std::error_code failure;
    if (!folder.empty()) {
        std::filesystem::create_directories(folder, failure);
    }
    if (failure) {
        throw FileError(folder.string() + ": " + FileError::FromErrno(failure.value()).what());
    }
}

OutputFile::OutputFile(const FileName& newTarget, Overwrite newOverwrite)
    : target(FollowLinks(newTarget.Get()))
    , overwrite(newOverwrite)
    , isStream(OpenStream(newTarget))
{
    if (isStream) {
        return;
    }
    CheckNewFile(target, overwrite);
    temporary = MakeHiddenName(target);
    cleanUp = std::make_unique<ScopedCleanUp>(temporary);
    file = FileDescriptor(cleanUp->Open(0666));
    if (!file.IsOpen()) {
        throw FileError::FromErrno(errno);
    }
    struct stat status = {};
    if (::fstat(file.Get(), &status) == 0) {
        RemoveOldHiddenFiles(target, status.st_mtime);
    }
}

OutputFile::~OutputFile()
{
    if (!isStream && !isCommitted) {
        ::unlink(temporary.c_str());
    }
}

bool OutputFile::OpenStream(const FileName& newTarget)
{
    const char* const path = newTarget.Get().c_str();
    struct stat status = {};
    if (newTarget.IsStream()) {
        file = FileDescriptor(::fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 3));
    } else if (::stat(path, &status) == 0 && !S_ISREG(status.st_mode) && !S_ISDIR(status.st_mode)) {
        file = FileDescriptor(::open(path, O_WRONLY | O_CLOEXEC | O_NOCTTY));
    } else {
        return false;
    }
    if (!file.IsOpen()) {
        throw FileError::FromErrno(errno);
    }
    return true;
}

void OutputFile::KeepAttributes() const
{
    struct stat status = {};
    if (::stat(target.c_str(), &status) != 0) {
        return;
    }
    // Giving a file away may be forbidden; the content matters more than its owner. The mode comes
    // second because a change of owner clears bits of it.
    if (::fchown(file.Get(), status.st_uid, status.st_gid) != 0) {
        errno = 0;
    }
    ::fchmod(file.Get(), status.st_mode & 07777U);
}

void OutputFile::Rename() const
{
    int failure = 0;
    if (overwrite == Overwrite::Refuse) {
        failure = RenameToNew(temporary, target);
    } else if (::rename(temporary.c_str(), target.c_str()) != 0) {
        failure = errno;
    }
    if (failure != 0) {
        throw failure == EEXIST ? FileError(ExistsText) : FileError::FromErrno(failure);
    }
}

void OutputFile::Commit()
{
    if (!isStream) {
        KeepAttributes();
        // EINVAL: a file system that has nothing to flush.
        if (::fsync(file.Get()) != 0 && errno != EINVAL) {
            throw FileError::FromErrno(errno);
        }
    }
    if (!file.Close()) {
        throw FileError::FromErrno(errno);
    }
    if (!isStream) {
        Rename();
    }
    isCommitted = true;
}

void OutputFile::WriteWhole(std::string_view content)
{
    const int failure = WriteFully(GetDescriptor(), content);
    if (failure != 0) {
        throw FileError::FromErrno(failure);
    }
    Commit();
}

} // namespace Cli
