// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Compression.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cstddef>

namespace Util {

namespace {

/// An open inflating stream, closed with the scope.
class Inflater {
public:
    Inflater()
        : open(inflateInit(&stream) == Z_OK)
    {
    }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;
    ~Inflater()
    {
        if (open) {
            inflateEnd(&stream);
        }
    }

    bool IsOpen() const { return open; }
    z_stream& Stream() { return stream; }

private:
    z_stream stream{};
    bool open;
};

} // namespace

Bytes Deflate(ByteSpan bytes)
{
    uLongf size = compressBound(bytes.size());
    Bytes result(size);
    if (compress(result.data(), &size, bytes.data(), bytes.size()) != Z_OK) {
        return {};
    }
    result.resize(size);
    return result;
}

std::optional<Bytes> Inflate(ByteSpan bytes, uint64_t maxBytes)
{
    constexpr std::size_t MostAtOnce = std::size_t{1} << 30; // the library counts in 32 bits
    Inflater inflater;
    if (!inflater.IsOpen()) {
        return std::nullopt;
    }
    z_stream& stream = inflater.Stream();

    Bytes result;
    std::array<uint8_t, 16384> piece{};
    for (int status = Z_OK; status != Z_STREAM_END;) {
        if (stream.avail_in == 0) {
            const ByteSpan next = bytes.first(std::min(bytes.size(), MostAtOnce));
            bytes = bytes.subspan(next.size());
            // The library only reads here, but its field is not const.
            stream.next_in = const_cast<Bytef*>(next.data());
            stream.avail_in = static_cast<uInt>(next.size());
        }
        stream.next_out = piece.data();
        stream.avail_out = static_cast<uInt>(piece.size());
        status = inflate(&stream, Z_NO_FLUSH);
        // No progress means that the stream ends before its end mark.
        if (status != Z_OK && status != Z_STREAM_END) {
            return std::nullopt;
        }
        const std::size_t count = piece.size() - stream.avail_out;
        if (count > maxBytes - result.size()) {
            return std::nullopt;
        }
        result.insert(result.end(), piece.data(), piece.data() + count);
    }
    return result;
}

} // namespace Util
