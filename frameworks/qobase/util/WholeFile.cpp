// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/Path.h"
#include "frameworks/qobase/util/PlatformFile.h"
#include "frameworks/qobase/util/Temporaries.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace Util {
namespace {

constexpr uint32_t NewFilePermissions = 0666; // less what the user's mask takes
constexpr uint64_t FirstStepBytes = 64ULL << 10;
constexpr uint64_t LargestStepBytes = 4ULL << 20;

/// A new file beside another one, which is removed unless it took the other one's place.
///
/// A process that is killed meanwhile leaves the new file behind, hidden. The folder may be shared
/// between machines, where another one's processes can't be distinguished from dead ones: the next
/// that is made there clears away what nobody can be writing any more, going by the age.
class Replacement {
public:
    /// `target` is no symbolic link.
    explicit Replacement(String newTarget)
        : target(std::move(newTarget))
    {
    }
    Replacement(const Replacement&) = delete;
    Replacement& operator=(const Replacement&) = delete;
    ~Replacement()
    {
        static_cast<void>(CloseOnce());
        if (!temporary.IsNull()) {
            Platform::RemoveFile(temporary);
        }
    }

    Expected<void> Make()
    {
        const auto former = Platform::GetStatus(target);
        if (const int error = CheckFormer(former); error != 0) {
            return Failure("Error opening file", error);
        }
        // Never more open to others than the former file was, not even while it is written.
        const bool isNew = former.error != 0;
        int error = isNew ? OpenUnique(NewFilePermissions) : OpenUnique(former.permissions);
        if (error == 0 && !isNew) {
            error = Platform::CopyOwnership(descriptor, former);
        }
        if (error != 0) {
            return Failure("Error opening file", error);
        }
        // The new file bears the time of the folder's clock.
        Temporaries::RemoveOld(Path::GetFolder(target),
                               Platform::GetStatus(descriptor).modificationTime);
        return {};
    }

    Expected<void> Write(ByteSpan bytes)
    {
        const auto moved = Platform::WriteBytes(descriptor, bytes.data(), bytes.size());
        if (moved.bytes == bytes.size()) {
            return {};
        }
        const auto text = String("Attempt to write %1 bytes, only wrote %2 bytes");
        return Failure(text.arg(uint64_t{bytes.size()}).arg(moved.bytes), moved.error);
    }

    Expected<void> TakePlace()
    {
        if (auto finished = Finish(); !finished) {
            return finished;
        }
        if (const int error = Platform::RenameFile(temporary, target); error != 0) {
            return Failure("MoveFileEx failed", error);
        }
        NoteInPlace();
        return {};
    }

    /// False when somebody has the place.
    Expected<bool> TakeFreePlace()
    {
        if (auto finished = Finish(); !finished) {
            return finished.GetError();
        }
        const int error = Platform::RenameFileToNew(temporary, target);
        if (error == EEXIST) {
            return false;
        }
        if (error != 0) {
            return Failure("MoveFileEx failed", error).GetError();
        }
        NoteInPlace();
        return true;
    }

private:
    Expected<void> Finish()
    {
        // Without the flush a crash could leave the new name with no contents behind it.
        if (const int error = Platform::FlushToDisk(descriptor); error != 0) {
            return Failure("Flush failed", error);
        }
        if (const int error = CloseOnce(); error != 0) {
            return Failure("Close failed", error);
        }
        return {};
    }

    void NoteInPlace()
    {
        temporary = {};
        // The new file is in its place by now, so that a failure here is none of the call's.
        const String folder = Path::GetFolder(target);
        Platform::FlushFolder(folder.IsEmpty() ? String(".") : folder);
    }

    int CheckFormer(const Platform::Status& former) const
    {
        if (former.error != 0) {
            return former.error == ENOENT ? 0 : former.error;
        }
        if (former.kind == Platform::Kind::Folder) {
            return EISDIR;
        }
        // Renaming over a device or a pipe would put a plain file in its place.
        return former.kind == Platform::Kind::Regular ? Platform::CheckWritable(target) : EINVAL;
    }

    int OpenUnique(uint32_t permissions)
    {
        constexpr int Tries = 16;
        int error = EEXIST;
        for (int i = 0; i < Tries && error == EEXIST; ++i) {
            const String path = Path::Join(Path::GetFolder(target), Temporaries::MakeName());
            const auto opened = Platform::OpenFile(path, Platform::Access::CreateNew, permissions);
            descriptor = opened.descriptor;
            error = opened.error;
            if (error == 0) {
                temporary = path;
            }
        }
        return error;
    }

    int CloseOnce()
    {
        const int open = std::exchange(descriptor, Platform::NoFile);
        return open == Platform::NoFile ? 0 : Platform::CloseFile(open);
    }

    Expected<void> Failure(const String& text, int error) const
    {
        return File::MakeError(text, target, error);
    }

    const String target;
    String temporary; // null while there is none
    int descriptor = Platform::NoFile;
};

/// Closes a file that is only read, however its block ends.
class ReadDescriptor {
public:
    explicit ReadDescriptor(int newDescriptor)
        : descriptor(newDescriptor)
    {
    }
    ReadDescriptor(const ReadDescriptor&) = delete;
    ReadDescriptor& operator=(const ReadDescriptor&) = delete;
    ~ReadDescriptor() { Platform::CloseFile(descriptor); }

private:
    const int descriptor;
};

File::Error TooLarge(const String& path, uint64_t maxBytes)
{
    return File::MakeError(String("File is larger than %1 bytes").arg(maxBytes), path, EFBIG);
}

/// Where a chain of symbolic links ends; that place may be without a file.
Expected<String> FollowLinks(const String& path)
{
    constexpr int MostLinks = 40;
    std::filesystem::path place(path.ToStdString());
    for (int i = 0; i < MostLinks; ++i) {
        std::error_code error;
        const auto aim = std::filesystem::read_symlink(place, error);
        if (error) {
            return String(place.string()); // no link
        }
        place = place.parent_path() / aim; // an absolute aim replaces the folder
    }
    return File::MakeError("Error opening file", path, ELOOP);
}

/// Reads from the file to its end, or one byte further than `maxBytes`. The steps grow with what
/// has come, because the size that a file states is a claim: it may grow, and pipes have none.
Expected<Bytes>
ReadToEnd(int descriptor, const String& path, uint64_t statedSize, uint64_t maxBytes)
{
    Bytes bytes;
    const uint64_t most = std::min<uint64_t>(maxBytes, bytes.max_size() - 1) + 1;
    uint64_t step = std::max(statedSize + 1, FirstStepBytes); // one more, to meet the end as well
    while (bytes.size() < most) {
        const std::size_t before = bytes.size();
        step = std::min(step, most - before);
        bytes.resize(before + step);
        const auto moved = Platform::ReadBytes(descriptor, bytes.data() + before, step);
        bytes.resize(before + moved.bytes);
        if (moved.error != 0) {
            const auto text = String("Attempt to read %1 bytes, only read %2 bytes");
            return File::MakeError(text.arg(step).arg(moved.bytes), path, moved.error);
        }
        if (moved.bytes < step) {
            return bytes;
        }
        step = std::clamp<uint64_t>(bytes.size(), FirstStepBytes, LargestStepBytes);
    }
    return TooLarge(path, maxBytes);
}

} // namespace

Expected<Bytes> ReadWholeFile(const String& path, uint64_t maxBytes)
{
    // Asked before the opening, which is an action of its own on some devices.
    const auto status = Platform::GetStatus(path);
    if (status.error != 0) {
        return File::MakeError("Error opening file", path, status.error);
    }
    if (status.kind == Platform::Kind::Pipe || status.kind == Platform::Kind::Other) {
        return File::Error("Error opening file", "File", {path, "is no regular file"});
    }
    if (status.size > maxBytes) {
        return TooLarge(path, maxBytes);
    }
    const auto opened = Platform::OpenFile(path, Platform::Access::Read);
    if (opened.error != 0) {
        return File::MakeError("Error opening file", path, opened.error);
    }
    const ReadDescriptor owner(opened.descriptor);
    return ReadToEnd(opened.descriptor, path, status.size, maxBytes);
}

Expected<void> ReplaceWholeFile(const String& path, ByteSpan bytes)
{
    const auto target = FollowLinks(path);
    if (!target) {
        return target.GetError();
    }
    Replacement replacement(*target);
    if (auto made = replacement.Make(); !made) {
        return made;
    }
    if (auto written = replacement.Write(bytes); !written) {
        return written;
    }
    return replacement.TakePlace();
}

Expected<bool> CreateWholeFile(const String& path, ByteSpan bytes)
{
    std::error_code unknown; // what can't be looked at fails when it is made
    if (std::filesystem::exists(std::filesystem::symlink_status(path.ToStdString(), unknown))) {
        return false;
    }
    Replacement replacement(path);
    if (auto made = replacement.Make(); !made) {
        return made.GetError();
    }
    if (auto written = replacement.Write(bytes); !written) {
        return written.GetError();
    }
    return replacement.TakeFreePlace();
}

Expected<void> SetFileAside(const String& path, const String& wanted)
{
    String target = wanted;
    for (uint32_t number = 2; File(target).Exists(); ++number) {
        target = (wanted + "-%1").arg(number);
    }
    return File(path).Move(target);
}

} // namespace Util
