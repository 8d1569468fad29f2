// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/AudioWriter.h"

#include "wrappers/cli/audio/AudioFormat.h"
#include "wrappers/cli/audio/Quantiser.h"
#include "wrappers/cli/audio/WavStream.h"
#include "wrappers/cli/files/FileError.h"

#include <unistd.h>

namespace Cli {

namespace {

// What 32 bits can count, less room for chunks behind the samples.
constexpr int64_t GreatestNarrowFile = (int64_t{1} << 32) - (int64_t{1} << 20);

bool IsWavContainer(int format)
{
    const int container = format & SF_FORMAT_TYPEMASK;
    return container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX ||
           container == SF_FORMAT_RF64;
}

} // namespace

AudioWriter::AudioWriter(const Target& target, const Metadata& metadata)
    : output(target.name, target.overwrite)
    , format(target.format)
{
    info.samplerate = target.sampleRate;
    info.channels = target.channels;
    info.format = target.format;
    const bool isRaw = (format & SF_FORMAT_TYPEMASK) == SF_FORMAT_RAW;
    const bool canStream = isRaw || (IsWavContainer(format) && BytesPerSample(format) > 0);
    if (output.IsStream() && canStream) {
        OpenStream(metadata, target.frames);
    } else if (output.IsStream()) {
        spool = OpenAnonymousFile();
        OpenContainer(spool.Get(), metadata);
    } else {
        OpenContainer(output.GetDescriptor(), metadata);
    }
}

void AudioWriter::OpenContainer(int descriptor, const Metadata& metadata)
{
    io = std::make_unique<DescriptorIo>(descriptor, DescriptorIo::Access::Seekable);
    handle = io->Open(SFM_WRITE, info);
    // It would carry the time of day, and the same input is to give the same bytes.
    sf_command(handle.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    metadata.WriteTo(handle.get());
}

void AudioWriter::OpenStream(const Metadata& metadata, std::optional<int64_t> frames)
{
    if (IsWavContainer(format)) {
        const int failure = WriteFully(output.GetDescriptor(), MakeWavHead(info, metadata, frames));
        if (failure != 0) {
            throw FileError::FromErrno(failure);
        }
        info.format = SF_FORMAT_RAW | (format & SF_FORMAT_SUBMASK) | SF_ENDIAN_LITTLE;
    }
    io = std::make_unique<DescriptorIo>(output.GetDescriptor(), DescriptorIo::Access::Forward, 0);
    handle = io->Open(SFM_WRITE, info);
}

// These containers count bytes in 32 bits and would end up with a wrong head.
void AudioWriter::RefuseTooLong() const
{
    const int container = info.format & SF_FORMAT_TYPEMASK;
    const bool isNarrow = container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX ||
                          container == SF_FORMAT_AIFF || container == SF_FORMAT_AU;
    if (isNarrow && io->GetPosition() > GreatestNarrowFile) {
        throw FileError(ContainerName(format) + " can't hold more than 4 GiB; --format rf64 can");
    }
}

void AudioWriter::ThrowIfFailed(bool isShort)
{
    if (io->GetFailure() != 0) {
        throw FileError::FromErrno(io->GetFailure());
    }
    if (isShort) {
        throw FileError(sf_strerror(handle.get()));
    }
}

sf_count_t AudioWriter::WriteIntegers(std::span<const double> samples)
{
    const int bits = BitsOf(format);
    const double steps = StepsOf(bits);
    const int unit = bits < 32 ? 1 << (32 - bits) : 1;
    integers.resize(samples.size());
    for (size_t i = 0; i < samples.size(); ++i) {
        integers[i] = static_cast<int>(RoundToStep(samples[i], steps)) * unit;
    }
    return sf_write_int(handle.get(), integers.data(), static_cast<sf_count_t>(integers.size()));
}

void AudioWriter::Write(std::span<const double> samples)
{
    const auto count = static_cast<sf_count_t>(samples.size());
    const sf_count_t written = KindOf(format) == SampleKind::Integer
                                   ? WriteIntegers(samples)
                                   : sf_write_double(handle.get(), samples.data(), count);
    ThrowIfFailed(written != count);
    RefuseTooLong();
}

void AudioWriter::Finish()
{
    // Closing writes the head for good.
    const int failure = sf_close(handle.release());
    if (io->GetFailure() != 0) {
        throw FileError::FromErrno(io->GetFailure());
    }
    if (failure != 0) {
        throw FileError(sf_error_number(failure));
    }
    if (spool.IsOpen()) {
        CopyBytes(spool.Get(), 0, ::lseek(spool.Get(), 0, SEEK_END), output.GetDescriptor());
    }
    output.Commit();
}

} // namespace Cli
