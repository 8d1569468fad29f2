// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/StateChunk.h"

#include "frameworks/qobase/util/Compression.h"

#include <algorithm>
#include <array>

namespace StateChunk {
namespace {

constexpr std::size_t LengthBytes = 4;

std::array<uint8_t, LengthBytes> EncodeLength(uint32_t length)
{
    return {static_cast<uint8_t>(length),
            static_cast<uint8_t>(length >> 8),
            static_cast<uint8_t>(length >> 16),
            static_cast<uint8_t>(length >> 24)};
}

uint32_t DecodeLength(Util::ByteSpan bytes)
{
    return static_cast<uint32_t>(bytes[0]) | static_cast<uint32_t>(bytes[1]) << 8 |
           static_cast<uint32_t>(bytes[2]) << 16 | static_cast<uint32_t>(bytes[3]) << 24;
}

} // namespace

Util::Bytes CompressText(const String& text)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.Data());
    return Util::Deflate({bytes, text.Length()});
}

uint32_t GetChunkSizeOfText(const String& text)
{
    return static_cast<uint32_t>(LengthBytes + CompressText(text).size());
}

bool WriteText(const String& text, std::span<uint8_t> chunk)
{
    const auto length = EncodeLength(text.Length());
    const Util::Bytes body = CompressText(text);
    const std::size_t lengthPlace = std::min(chunk.size(), length.size());
    std::copy_n(length.begin(), lengthPlace, chunk.begin());
    const std::span<uint8_t> rest = chunk.subspan(lengthPlace);
    std::copy_n(body.begin(), std::min(rest.size(), body.size()), rest.begin());
    return chunk.size() == length.size() + body.size();
}

std::optional<Util::Bytes> ReadText(Util::ByteSpan chunk)
{
    if (chunk.size() < LengthBytes) {
        return std::nullopt;
    }
    const uint32_t claimed = DecodeLength(chunk);
    if (claimed > Util::MaxClaimedBytes) {
        return std::nullopt;
    }
    return Util::Inflate(chunk.subspan(LengthBytes), claimed);
}

} // namespace StateChunk
