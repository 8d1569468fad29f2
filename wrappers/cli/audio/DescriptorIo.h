// SPDX-License-Identifier: ISC
#pragma once

#include <sndfile.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Cli {

/// Closes a handle of libsndfile.
struct SndFileCloser {
    void operator()(SNDFILE* handle) const { sf_close(handle); }
};
using SndFileHandle = std::unique_ptr<SNDFILE, SndFileCloser>;

/// The bytes under a handle of libsndfile: a descriptor, seekable or not. It keeps the first error
/// number, which libsndfile loses. Must outlive the handle.
class DescriptorIo {
public:
    enum class Access { Seekable, Forward };

    /// Doesn't own `descriptor`. Seekable: byte 0 is where the descriptor stands now. Forward:
    /// reading ends at the end of the stream or after `length` bytes.
    explicit DescriptorIo(int descriptor,
                          Access access,
                          std::optional<int64_t> length = std::nullopt);

    /// Opens a handle on the bytes, SFM_READ or SFM_WRITE. Throws FileError.
    SndFileHandle Open(int mode, SF_INFO& info);

    /// The first error number of a read or write, 0 while all went well.
    int GetFailure() const { return failure; }

    /// Bytes from the start to the furthest that was read or written.
    int64_t GetPosition() const { return position; }

private:
    static sf_count_t Length(void* self);
    static sf_count_t Seek(sf_count_t offset, int whence, void* self);
    static sf_count_t Read(void* target, sf_count_t count, void* self);
    static sf_count_t Write(const void* source, sf_count_t count, void* self);
    static sf_count_t Tell(void* self);

    int descriptor;
    Access access;
    int64_t base = 0;     // Seekable: the descriptor's own position of byte 0
    int64_t position = 0; // relative to base
    int64_t length;       // Forward
    int failure = 0;
};

} // namespace Cli
