// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/File.h"

#include "frameworks/qobase/util/PlatformFile.h"

#include <cerrno>
#include <utility>

namespace Util {

File::File(String newPath)
    : path(std::move(newPath))
{
}

File::File(File&& other) noexcept
    : path(std::move(other.path))
    , descriptor(std::exchange(other.descriptor, Platform::NoFile))
{
}

File& File::operator=(File&& other) noexcept
{
    std::swap(path, other.path);
    std::swap(descriptor, other.descriptor);
    return *this;
}

File::~File()
{
    static_cast<void>(Close());
}

File::Error File::MakeError(const String& text, const String& path, int systemError)
{
    const String reason = systemError == 0 ? String("") : Platform::DescribeError(systemError);
    return Error(text, "File", {path, reason});
}

Expected<void> File::Result(int systemError, const char* text) const
{
    if (systemError == 0) {
        return {};
    }
    return MakeError(text, path, systemError);
}

Expected<void> File::Open(Mode mode)
{
    if (auto closed = Close(); !closed) {
        return closed;
    }
    const auto opened = Platform::OpenFile(
        path, mode == Mode::Read ? Platform::Access::Read : Platform::Access::Write);
    descriptor = opened.descriptor;
    return Result(opened.error, "Error opening file");
}

Expected<void> File::Read(void* buffer, uint64_t count)
{
    if (!IsOpen()) {
        return MakeError(String("Attempt to read %1 bytes when not open").arg(count), path, EBADF);
    }
    const auto moved = Platform::ReadBytes(descriptor, buffer, count);
    if (moved.bytes == count) {
        return {};
    }
    const auto text = String("Attempt to read %1 bytes, only read %2 bytes");
    return MakeError(text.arg(count).arg(moved.bytes), path, moved.error);
}

Expected<void> File::Write(const void* buffer, uint64_t count)
{
    if (!IsOpen()) {
        return MakeError(String("Attempt to write %1 bytes when not open").arg(count), path, EBADF);
    }
    const auto moved = Platform::WriteBytes(descriptor, buffer, count);
    if (moved.bytes == count) {
        return {};
    }
    const auto text = String("Attempt to write %1 bytes, only wrote %2 bytes");
    return MakeError(text.arg(count).arg(moved.bytes), path, moved.error);
}

Expected<void> File::Seek(uint64_t position)
{
    if (!IsOpen()) {
        return MakeError(String("Attempt to seek to %1 when not open").arg(position), path, EBADF);
    }
    const int error = Platform::SeekTo(descriptor, position);
    if (error != 0) {
        return MakeError(String("Seek to %1 failed").arg(position), path, error);
    }
    return {};
}

Expected<void> File::Close()
{
    if (!IsOpen()) {
        return {};
    }
    return Result(Platform::CloseFile(std::exchange(descriptor, Platform::NoFile)), "Close failed");
}

Expected<void> File::Flush()
{
    return Result(IsOpen() ? Platform::FlushToDisk(descriptor) : EBADF, "Flush failed");
}

Expected<uint64_t> File::GetSize() const
{
    const auto status = Platform::GetStatus(descriptor);
    if (status.error != 0 || status.kind != Platform::Kind::Regular) {
        return MakeError("Could not get the number of bytes remaining", path, status.error);
    }
    return status.size;
}

Expected<uint64_t> File::GetPosition() const
{
    const auto position = Platform::GetPosition(descriptor);
    if (position.error != 0) {
        return MakeError("Could not get the number of bytes remaining", path, position.error);
    }
    return position.bytes;
}

Expected<int64_t> File::GetModificationTime() const
{
    const auto status = Platform::GetStatus(path);
    if (status.error != 0) {
        return MakeError("Error getting file time", path, status.error);
    }
    return status.modificationTime;
}

bool File::Exists() const
{
    return Platform::GetStatus(path).error == 0;
}

Expected<void> File::Remove()
{
    return Result(Platform::RemoveFile(path), "Remove failed");
}

Expected<void> File::Move(const String& target)
{
    return Result(Platform::RenameFile(path, target), "MoveFileEx failed");
}

} // namespace Util
