// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/AudioReader.h"

#include "wrappers/cli/audio/Limits.h"
#include "wrappers/cli/audio/WavStream.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <regex>
#include <utility>

namespace Cli {

namespace {

bool IsSeekable(int descriptor)
{
    return ::lseek(descriptor, 0, SEEK_CUR) >= 0;
}

// Sizes that stand where a writer couldn't know the real one.
bool IsPlaceholderSize(int64_t size)
{
    return size >= 0x7FFFE000 && (size <= 0x7FFFFFFF || (size >= 0xFFFFE000 && size <= 0xFFFFFFFF));
}

// libsndfile reads what is there of a file that was cut off and mentions it in its log only:
// "data : 192000 (should be 95978)". WAV, AIFF and AU name the samples' chunk, W64 and RF64 the
// whole file.
bool LogTellsTruncation(const std::string& log)
{
    static const std::regex Sizes(
        R"((data|SSND|Data Size|riff|Riff size)\s*: (\d+) \(should be (\d+)\))");
    for (std::sregex_iterator match(log.begin(), log.end(), Sizes), end; match != end; ++match) {
        const int64_t claimed = std::stoll((*match)[2]);
        const int64_t present = std::stoll((*match)[3]);
        if (claimed > present && !IsPlaceholderSize(claimed)) {
            return true;
        }
    }
    return false;
}

std::string ReadLog(SNDFILE* handle)
{
    std::array<char, 16384> buffer = {};
    sf_command(handle, SFC_GET_LOG_INFO, buffer.data(), static_cast<int>(buffer.size()) - 1);
    return buffer.data();
}

[[noreturn]] void RefuseTruncated()
{
    throw FileError("truncated: it ends before the samples that its head promises");
}

void CheckLimits(const SF_INFO& info)
{
    if (info.samplerate < LeastSampleRate || info.samplerate > GreatestSampleRate) {
        throw FileError(fmt::format("its rate of {} Hz is outside {} to {} Hz",
                                    info.samplerate,
                                    LeastSampleRate,
                                    GreatestSampleRate));
    }
    if (info.channels < 1 || info.channels > GreatestChannelCount) {
        throw FileError(fmt::format(
            "its {} channels are more than the {} possible", info.channels, GreatestChannelCount));
    }
}

} // namespace

AudioReader::AudioReader(const FileName& name, const std::optional<RawFormat>& raw)
    : AudioReader(OpenForReading(name), name, raw, Source::AsFound)
{
}

AudioReader::AudioReader(FileDescriptor newFile,
                         const FileName& name,
                         const std::optional<RawFormat>& raw,
                         Source newSource)
    : file(std::move(newFile))
    , source(newSource)
{
    struct stat status = {};
    if (::fstat(file.Get(), &status) == 0 && S_ISDIR(status.st_mode)) {
        throw FileError("is a directory");
    }
    const std::string extension = LowerCase(std::filesystem::path(name.Get()).extension().string());
    const bool isRaw = raw && (name.IsStream() || extension == ".raw");
    const bool isFile =
        source == Source::AsFound && S_ISREG(status.st_mode) && IsSeekable(file.Get());
    if (isFile && status.st_size == 0) {
        throw FileError("the file is empty");
    }
    if (isRaw && isFile) {
        OpenRaw(*raw,
                DescriptorIo::Access::Seekable,
                status.st_size - ::lseek(file.Get(), 0, SEEK_CUR));
    } else if (isFile) {
        OpenFile();
    } else {
        OpenStream(raw);
    }
    CheckLimits(info);
    if (frames == 0) {
        throw FileError("holds no samples");
    }
}

void AudioReader::OpenFile()
{
    io = std::make_unique<DescriptorIo>(file.Get(), DescriptorIo::Access::Seekable);
    handle = io->Open(SFM_READ, info);
    frames = info.frames;
    // What an Ogg stream answers when its last page is missing.
    if (info.frames == SF_COUNT_MAX || LogTellsTruncation(ReadLog(handle.get()))) {
        RefuseTruncated();
    }
    CheckLimits(info);
    metadata = Metadata::ReadFrom(handle.get(), info.channels);
}

void AudioReader::OpenStream(const std::optional<RawFormat>& raw)
{
    if (raw) {
        OpenRaw(*raw, DescriptorIo::Access::Forward, std::nullopt);
        return;
    }
    std::string firstBytes(12, '\0');
    firstBytes.resize(ReadFully(file.Get(), firstBytes));
    if (firstBytes.empty()) {
        throw FileError("the stream is empty");
    }
    if (IsWav(firstBytes)) {
        OpenWavStream(firstBytes);
    } else {
        SpoolStream(firstBytes);
    }
}

void AudioReader::OpenRaw(const RawFormat& raw,
                          DescriptorIo::Access access,
                          std::optional<int64_t> bytes)
{
    info = {};
    info.format = raw.format;
    info.samplerate = raw.sampleRate;
    info.channels = raw.channels;
    if (bytes) {
        frames = *bytes / raw.channels / BytesPerSample(raw.format);
    }
    io = std::make_unique<DescriptorIo>(file.Get(), access, bytes);
    handle = io->Open(SFM_READ, info);
}

void AudioReader::OpenWavStream(const std::string& firstBytes)
{
    const WavHead head = ReadWavHead(file.Get(), firstBytes);
    WavDescription description = DescribeWavHead(head);
    const SF_INFO described = description.info;
    CheckLimits(described);
    if (BytesPerSample(described.format) == 0) {
        SpoolStream(head.bytes);
        return;
    }
    metadata = std::move(description.metadata);
    const int subtype = described.format & SF_FORMAT_SUBMASK;
    OpenRaw({SF_FORMAT_RAW | subtype | SF_ENDIAN_LITTLE, described.samplerate, described.channels},
            DescriptorIo::Access::Forward,
            head.dataBytes);
    info.format = described.format;
}

void AudioReader::SpoolStream(const std::string& firstBytes)
{
    if (source == Source::Spooled) {
        ::lseek(file.Get(), 0, SEEK_SET);
        OpenFile();
        return;
    }
    FileDescriptor spool = OpenAnonymousFile();
    std::string buffer = firstBytes;
    while (!buffer.empty()) {
        const int failure = WriteFully(spool.Get(), buffer);
        if (failure != 0) {
            throw FileError::FromErrno(failure);
        }
        buffer.resize(size_t{64} * 1024);
        buffer.resize(ReadFully(file.Get(), buffer));
    }
    ::lseek(spool.Get(), 0, SEEK_SET);
    file = std::move(spool);
    OpenFile();
}

size_t AudioReader::Read(std::span<double> target)
{
    const auto wanted = static_cast<sf_count_t>(target.size()) / info.channels;
    const sf_count_t count = sf_readf_double(handle.get(), target.data(), wanted);
    if (io->GetFailure() != 0) {
        throw FileError::FromErrno(io->GetFailure());
    }
    if (count < wanted && sf_error(handle.get()) != SF_ERR_NO_ERROR) {
        throw FileError(fmt::format("damaged or truncated after {}: {}",
                                    FormatClock(static_cast<double>(framesRead + count) /
                                                static_cast<double>(info.samplerate)),
                                    sf_strerror(handle.get())));
    }
    framesRead += count;
    if (count < wanted && frames && framesRead < *frames) {
        RefuseTruncated();
    }
    if (count < wanted && framesRead == 0) {
        throw FileError("holds no samples");
    }
    return static_cast<size_t>(count);
}

bool AudioReader::Skip(int64_t count)
{
    switch (info.format & SF_FORMAT_TYPEMASK) {
    case SF_FORMAT_WAV:
    case SF_FORMAT_WAVEX:
    case SF_FORMAT_W64:
    case SF_FORMAT_RF64:
    case SF_FORMAT_AIFF:
    case SF_FORMAT_RAW:
        break;
    default:
        return false;
    }
    // A stream can't be gone forward in either.
    if (BytesPerSample(info.format) == 0 ||
        sf_seek(handle.get(), count, SEEK_CUR) != framesRead + count) {
        return false;
    }
    framesRead += count;
    return true;
}

} // namespace Cli
