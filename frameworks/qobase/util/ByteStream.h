// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Expected.h"

#include <cstdint>

namespace Util {

/// Base of byte sources: bytes at positions that are counted from 0. One object belongs to one
/// thread.
class ByteStream {
public:
    ByteStream() = default;
    ByteStream(const ByteStream&) = delete;
    ByteStream& operator=(const ByteStream&) = delete;
    virtual ~ByteStream() = default;

    /// Exactly `count` bytes, or a failure; the position is then undefined.
    virtual Expected<void> Read(void* buffer, uint64_t count) = 0;
    /// All `count` bytes, or a failure; the position is then undefined.
    virtual Expected<void> Write(const void* buffer, uint64_t count) = 0;
    /// Bytes from the start.
    virtual Expected<void> Seek(uint64_t position) = 0;
    /// Brings what was written to where it stays.
    virtual Expected<void> Flush() = 0;
    virtual Expected<uint64_t> GetPosition() const = 0;
    /// Bytes from the start to the end, wherever the position is.
    virtual Expected<uint64_t> GetSize() const = 0;
};

} // namespace Util
