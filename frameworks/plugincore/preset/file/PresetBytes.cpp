// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/file/PresetBytes.h"

#include "frameworks/plugincore/preset/file/PresetErrors.h"
#include "frameworks/qobase/util/Compression.h"
#include "frameworks/qobase/util/File.h"

namespace Preset {
namespace {

constexpr std::size_t LengthBytes = 4;

bool IsZlibHeader(uint8_t method, uint8_t flags)
{
    constexpr uint32_t CheckDivisor = 31;
    return (method & 0x0FU) == 8 && (uint32_t{method} << 8 | flags) % CheckDivisor == 0;
}

bool IsTextByte(uint8_t byte)
{
    return byte == '\t' || byte == '\n' || byte == '\r' || (byte >= 0x20 && byte < 0x7F);
}

bool IsByteOrderMark(Util::ByteSpan bytes)
{
    return bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF && IsTextByte(bytes[3]);
}

String LargerThanAllowed()
{
    return String("larger than %1 bytes").arg(MaxTextBytes);
}

uint32_t GetLength(Util::ByteSpan bytes)
{
    return uint32_t{bytes[0]} | uint32_t{bytes[1]} << 8 | uint32_t{bytes[2]} << 16 |
           uint32_t{bytes[3]} << 24;
}

} // namespace

bool IsCompressedPreset(Util::ByteSpan bytes)
{
    if (bytes.size() < LengthBytes + 2 || IsByteOrderMark(bytes)) {
        return false;
    }
    // A length whose top byte is a character of text would be above any that is accepted.
    return IsZlibHeader(bytes[LengthBytes], bytes[LengthBytes + 1]) && !IsTextByte(bytes[3]);
}

Util::Expected<Util::Bytes> InflatePreset(Util::ByteSpan bytes)
{
    const uint32_t length = bytes.size() < LengthBytes ? 0 : GetLength(bytes);
    if (length > MaxTextBytes) {
        return MakeParseError("Could not decompress file.", LargerThanAllowed());
    }
    if (length != 0) {
        auto text = Util::Inflate(bytes.subspan(LengthBytes), length);
        if (text) {
            return std::move(*text);
        }
    }
    return MakeParseError("Could not decompress file.");
}

Util::Expected<Util::Bytes> ReadPresetBytes(const String& path)
{
    auto bytes = Util::ReadWholeFile(path, MaxTextBytes);
    if (bytes) {
        return bytes;
    }
    Util::File file(path);
    const bool canOpen = static_cast<bool>(file.Open(Util::File::Mode::Read));
    const auto size = canOpen ? file.GetSize() : 0;
    const bool isTooLarge = size && *size > MaxTextBytes;
    return Util::File::Error(
        canOpen ? "Could not read file." : "Could not open file.",
        "File",
        {path, isTooLarge ? LargerThanAllowed() : GetReason(bytes.GetError())});
}

Util::Expected<Util::Bytes> ReadPresetText(const String& path)
{
    auto bytes = ReadPresetBytes(path);
    return bytes && IsCompressedPreset(*bytes) ? InflatePreset(*bytes) : bytes;
}

} // namespace Preset
