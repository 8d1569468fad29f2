// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Bytes.h"
#include "frameworks/qobase/util/DataStreamImpl.h"

namespace Util {

/// Bytes in memory that grow as they are written. Failures have the texts of a file's.
class ByteBuffer final : public ByteStream {
public:
    explicit ByteBuffer(Bytes newBytes);

    const Bytes& GetBytes() const { return bytes; }

    Expected<void> Read(void* buffer, uint64_t count) override;
    /// Replaces what is there and goes on behind it.
    Expected<void> Write(const void* buffer, uint64_t count) override;
    /// At most to the end.
    Expected<void> Seek(uint64_t newPosition) override;
    /// Nothing to do.
    Expected<void> Flush() override { return {}; }
    Expected<uint64_t> GetPosition() const override { return position; }
    Expected<uint64_t> GetSize() const override { return bytes.size(); }

private:
    Bytes bytes;
    uint64_t position = 0; // never behind the end
};

/// Typed values in memory: to make a file whole before it replaces the old one, and to read one
/// that was read whole.
class MemoryStream final : public DataStreamImpl {
public:
    explicit MemoryStream(Bytes bytes = {});

    /// All bytes, wherever the position is.
    const Bytes& GetBytes() const { return buffer.GetBytes(); }

private:
    ByteBuffer buffer;
};

} // namespace Util
