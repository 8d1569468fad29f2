// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/DescriptorIo.h"

#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <limits>
#include <mutex>
#include <span>
#include <string_view>

namespace Cli {

namespace {

// The size in the head of a stream of unknown length; small enough to be added to and doubled.
constexpr int64_t EndlessLength = std::numeric_limits<int64_t>::max() / 4;

} // namespace

DescriptorIo::DescriptorIo(int newDescriptor, Access newAccess, std::optional<int64_t> newLength)
    : descriptor(newDescriptor)
    , access(newAccess)
    , length(newLength.value_or(EndlessLength))
{
    if (access == Access::Seekable) {
        base = std::max<int64_t>(::lseek(descriptor, 0, SEEK_CUR), 0);
    }
}

SndFileHandle DescriptorIo::Open(int mode, SF_INFO& info)
{
    // The library keeps the reason of a failed opening for the whole process: another file's
    // opening must not come between the failure and the question.
    static std::mutex opening;
    const std::scoped_lock guard(opening);
    SF_VIRTUAL_IO callbacks = {Length, Seek, Read, Write, Tell};
    SndFileHandle handle(sf_open_virtual(&callbacks, mode, &info, this));
    if (failure != 0) {
        throw FileError::FromErrno(failure);
    }
    if (!handle) {
        if (sf_error(nullptr) == SF_ERR_UNRECOGNISED_FORMAT) {
            throw FileError("is no audio file of a known kind");
        }
        std::string reason = sf_strerror(nullptr);
        if (reason.ends_with('.')) {
            reason.pop_back();
        }
        throw FileError(reason);
    }
    return handle;
}

sf_count_t DescriptorIo::Length(void* self)
{
    const auto& io = *static_cast<DescriptorIo*>(self);
    if (io.access == Access::Forward) {
        return io.length;
    }
    struct stat status = {};
    return ::fstat(io.descriptor, &status) == 0 ? status.st_size - io.base : 0;
}

sf_count_t DescriptorIo::Seek(sf_count_t offset, int whence, void* self)
{
    auto& io = *static_cast<DescriptorIo*>(self);
    int64_t target = offset;
    if (whence == SEEK_CUR) {
        target += io.position;
    } else if (whence == SEEK_END) {
        target += Length(self);
    }
    if (io.access == Access::Forward) {
        return target == io.position ? target : -1;
    }
    if (target < 0 || ::lseek(io.descriptor, io.base + target, SEEK_SET) < 0) {
        return -1;
    }
    io.position = target;
    return target;
}

sf_count_t DescriptorIo::Read(void* target, sf_count_t count, void* self)
{
    auto& io = *static_cast<DescriptorIo*>(self);
    if (io.access == Access::Forward) {
        count = std::min<sf_count_t>(count, io.length - io.position);
    }
    int error = 0;
    const auto done = static_cast<sf_count_t>(
        ReadFully(io.descriptor, {static_cast<char*>(target), static_cast<size_t>(count)}, error));
    // The caller is C code: the reason travels in the object.
    if (io.failure == 0) {
        io.failure = error;
    }
    io.position += done;
    return done;
}

sf_count_t DescriptorIo::Write(const void* source, sf_count_t count, void* self)
{
    auto& io = *static_cast<DescriptorIo*>(self);
    const int error =
        WriteFully(io.descriptor, {static_cast<const char*>(source), static_cast<size_t>(count)});
    if (error != 0) {
        io.failure = io.failure != 0 ? io.failure : error;
        return 0;
    }
    io.position += count;
    return count;
}

sf_count_t DescriptorIo::Tell(void* self)
{
    return static_cast<DescriptorIo*>(self)->position;
}

} // namespace Cli
