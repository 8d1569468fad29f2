// SPDX-License-Identifier: ISC
#include "wrappers/cli/autorepair/RepeatedInput.h"

#include "wrappers/cli/audio/Finite.h"
#include "wrappers/cli/files/FileError.h"

#include <unistd.h>

#include <cerrno>
#include <string>
#include <utility>

namespace Cli {

namespace {

FileDescriptor CopyStream(const FileDescriptor& stream)
{
    FileDescriptor spool = OpenAnonymousFile();
    std::string buffer(size_t{64} * 1024, '\0');
    size_t count = buffer.size();
    while (count == buffer.size()) {
        count = ReadFully(stream.Get(), buffer);
        const int failure = WriteFully(spool.Get(), std::string_view(buffer).substr(0, count));
        if (failure != 0) {
            throw FileError("temporary file: " + std::string(FileError::FromErrno(failure).what()));
        }
    }
    return spool;
}

} // namespace

RepeatedInput::RepeatedInput(FileName newName, const std::optional<RawFormat>& newRaw)
    : name(std::move(newName))
    , raw(newRaw)
    , file(OpenForReading(name))
{
    ::fstat(file.Get(), &status);
    start = ::lseek(file.Get(), 0, SEEK_CUR);
    // A folder goes to the reader as it is, which says so.
    if (!S_ISDIR(status.st_mode) && (!S_ISREG(status.st_mode) || start < 0)) {
        file = CopyStream(file);
        source = AudioReader::Source::Spooled;
        start = 0;
        ::fstat(file.Get(), &status);
    }
    description = Open();
}

std::unique_ptr<AudioReader> RepeatedInput::Open() const
{
    ::lseek(file.Get(), start, SEEK_SET);
    FileDescriptor again(::dup(file.Get()));
    if (!again.IsOpen()) {
        throw FileError::FromErrno(errno);
    }
    return std::make_unique<AudioReader>(std::move(again), name, raw, source);
}

void RepeatedInput::Begin()
{
    RefuseChanged();
    reader = Open();
    position = 0;
    nonFinite = 0;
}

void RepeatedInput::RefuseChanged() const
{
    struct stat now = {};
    if (::fstat(file.Get(), &now) != 0 || now.st_size != status.st_size ||
        now.st_mtim.tv_sec != status.st_mtim.tv_sec ||
        now.st_mtim.tv_nsec != status.st_mtim.tv_nsec) {
        throw FileError("has changed while it was read");
    }
}

size_t RepeatedInput::Read(std::span<double> target)
{
    const auto channels = static_cast<size_t>(description->GetChannels());
    const size_t frames = reader->Read(target);
    nonFinite += SilenceNonFinite(target.first(frames * channels));
    position += static_cast<int64_t>(frames);
    if (frames * channels < target.size()) {
        RefuseChanged();
    }
    return frames;
}

bool RepeatedInput::SkipTo(int64_t target)
{
    if (!reader->Skip(target - position)) {
        return false;
    }
    position = target;
    return true;
}

} // namespace Cli
