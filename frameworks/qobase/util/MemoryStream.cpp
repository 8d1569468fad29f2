// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/MemoryStream.h"

#include <algorithm>
#include <utility>

namespace Util {

ByteBuffer::ByteBuffer(Bytes newBytes)
    : bytes(std::move(newBytes))
{
}

Expected<void> ByteBuffer::Read(void* buffer, uint64_t count)
{
    const uint64_t rest = bytes.size() - position;
    if (count > rest) {
        const String text("Attempt to read %1 bytes, only read %2 bytes");
        return BasicError<ByteBuffer>(text.arg(count).arg(rest));
    }
    std::copy_n(bytes.data() + position, count, static_cast<uint8_t*>(buffer));
    position += count;
    return {};
}

Expected<void> ByteBuffer::Write(const void* buffer, uint64_t count)
{
    const auto* const source = static_cast<const uint8_t*>(buffer);
    const uint64_t kept = std::min(count, bytes.size() - position);
    std::copy_n(source, kept, bytes.data() + position);
    bytes.insert(bytes.end(), source + kept, source + count);
    position += count;
    return {};
}

Expected<void> ByteBuffer::Seek(uint64_t newPosition)
{
    if (newPosition > bytes.size()) {
        return BasicError<ByteBuffer>(String("Seek to %1 failed").arg(newPosition));
    }
    position = newPosition;
    return {};
}

MemoryStream::MemoryStream(Bytes bytes)
    : DataStreamImpl(buffer)
    , buffer(std::move(bytes))
{
}

} // namespace Util
