// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/WavStream.h"

#include "wrappers/cli/audio/AudioFormat.h"
#include "wrappers/cli/audio/DescriptorIo.h"
#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"

#include <unistd.h>

#include <limits>

namespace Cli {

namespace {

constexpr uint32_t UnknownSize = 0xFFFFFFFF;
// More than any sensible head; a claim beyond it is a broken stream.
constexpr size_t GreatestHead = size_t{16} << 20U;

constexpr size_t RiffHeadBytes = 12; // "RIFF", size, "WAVE"
constexpr size_t ChunkHeadBytes = 8; // name, size

// Numbers in a WAV head are little-endian whatever the machine.
uint64_t GetNumber(std::string_view bytes, size_t offset, size_t size)
{
    uint64_t value = 0;
    for (size_t i = size; i-- > 0;) {
        value = value << 8U | static_cast<uint8_t>(bytes[offset + i]);
    }
    return value;
}

void PutNumber(std::string& bytes, size_t offset, size_t size, uint64_t value)
{
    for (size_t i = 0; i < size; ++i) {
        bytes[offset + i] = static_cast<char>(value >> (8 * i) & 0xFFU);
    }
}

void Append(std::string& bytes, int descriptor, size_t count)
{
    if (count > GreatestHead || bytes.size() + count > GreatestHead) {
        throw FileError("damaged: its WAV head claims to be longer than 16 MiB");
    }
    const size_t former = bytes.size();
    bytes.resize(former + count);
    if (ReadFully(descriptor, {bytes.data() + former, count}) != count) {
        throw FileError("truncated: it ends inside its WAV head");
    }
}

// Programs that write to a pipe put one of these where the size would stand.
bool IsPlaceholder(uint64_t size)
{
    return size == 0 || (size >= 0x7FFFE000 && size <= 0x7FFFFFFF) || size >= 0xFFFFE000;
}

// Offset of a chunk's head inside a WAV head, or npos.
size_t FindChunk(std::string_view bytes, std::string_view name)
{
    size_t offset = RiffHeadBytes;
    while (offset + ChunkHeadBytes <= bytes.size()) {
        if (bytes.substr(offset, 4) == name) {
            return offset;
        }
        const uint64_t size = GetNumber(bytes, offset + 4, 4);
        offset += ChunkHeadBytes + size + (size & 1U);
    }
    return std::string_view::npos;
}

// Sets all sizes of a head: bytes of samples behind it and their number of frames.
void PutSizes(std::string& head, std::optional<uint64_t> dataBytes, uint64_t frames)
{
    const bool fits = dataBytes && head.size() + *dataBytes < UnknownSize;
    PutNumber(head, 4, 4, fits ? head.size() - ChunkHeadBytes + *dataBytes : UnknownSize);
    PutNumber(head, head.size() - 4, 4, fits ? *dataBytes : UnknownSize);
    const size_t fact = FindChunk(head, "fact");
    if (fact != std::string_view::npos) {
        PutNumber(head, fact + ChunkHeadBytes, 4, fits ? frames : UnknownSize);
    }
    const size_t wide = FindChunk(head, "ds64");
    if (wide != std::string_view::npos && dataBytes) {
        PutNumber(head, wide + 8, 8, head.size() - ChunkHeadBytes + *dataBytes);
        PutNumber(head, wide + 16, 8, *dataBytes);
        PutNumber(head, wide + 24, 8, frames);
    }
}

FileDescriptor ToAnonymousFile(std::string_view bytes)
{
    FileDescriptor file = OpenAnonymousFile();
    const int failure = WriteFully(file.Get(), bytes);
    if (failure != 0) {
        throw FileError::FromErrno(failure);
    }
    ::lseek(file.Get(), 0, SEEK_SET);
    return file;
}

} // namespace

bool IsWav(std::string_view firstBytes)
{
    const std::string_view kind = firstBytes.substr(0, 4);
    return firstBytes.size() >= RiffHeadBytes && (kind == "RIFF" || kind == "RF64") &&
           firstBytes.substr(8, 4) == "WAVE";
}

WavHead ReadWavHead(int descriptor, std::string_view firstBytes)
{
    WavHead head{std::string(firstBytes), std::nullopt};
    std::optional<uint64_t> wideDataBytes;
    for (;;) {
        const size_t chunk = head.bytes.size();
        Append(head.bytes, descriptor, ChunkHeadBytes);
        const std::string name = head.bytes.substr(chunk, 4);
        const uint64_t size = GetNumber(head.bytes, chunk + 4, 4);
        if (name == "data") {
            if (size == UnknownSize && wideDataBytes) {
                head.dataBytes = static_cast<int64_t>(*wideDataBytes);
            } else if (!IsPlaceholder(size)) {
                head.dataBytes = static_cast<int64_t>(size);
            }
            return head;
        }
        Append(head.bytes, descriptor, size + (size & 1U));
        if (name == "ds64" && size >= 24) {
            const uint64_t claimed = GetNumber(head.bytes, chunk + 16, 8);
            if (claimed > 0 && claimed < std::numeric_limits<uint64_t>::max() / 8) {
                wideDataBytes = claimed;
            }
        }
    }
}

WavDescription DescribeWavHead(const WavHead& head)
{
    // libsndfile reads the head as a file without samples.
    std::string empty = head.bytes;
    PutSizes(empty, 0, 0);
    const FileDescriptor file = ToAnonymousFile(empty);
    DescriptorIo io(file.Get(), DescriptorIo::Access::Seekable);
    WavDescription description;
    const SndFileHandle handle = io.Open(SFM_READ, description.info);
    description.metadata = Metadata::ReadFrom(handle.get(), description.info.channels);
    return description;
}

std::string
MakeWavHead(const SF_INFO& info, const Metadata& metadata, std::optional<int64_t> frames)
{
    // libsndfile writes a file without samples, which is the head but for its sizes.
    const FileDescriptor file = OpenAnonymousFile();
    DescriptorIo io(file.Get(), DescriptorIo::Access::Seekable);
    SF_INFO wanted = info;
    {
        const SndFileHandle handle = io.Open(SFM_WRITE, wanted);
        sf_command(handle.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
        metadata.WriteTo(handle.get());
        sf_write_sync(handle.get());
        sf_command(handle.get(), SFC_UPDATE_HEADER_NOW, nullptr, 0);
    }
    const auto size = static_cast<size_t>(::lseek(file.Get(), 0, SEEK_END));
    std::string head(size, '\0');
    ::lseek(file.Get(), 0, SEEK_SET);
    ReadFully(file.Get(), head);
    const size_t data = FindChunk(head, "data");
    if (data == std::string_view::npos) {
        throw FileError("libsndfile made no WAV head");
    }
    head.resize(data + ChunkHeadBytes);
    std::optional<uint64_t> dataBytes;
    if (frames) {
        dataBytes = static_cast<uint64_t>(*frames * info.channels * BytesPerSample(info.format));
    }
    PutSizes(head, dataBytes, static_cast<uint64_t>(frames.value_or(0)));
    return head;
}

} // namespace Cli
