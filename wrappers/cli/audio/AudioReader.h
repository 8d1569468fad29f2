// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/audio/AudioFormat.h"
#include "wrappers/cli/audio/DescriptorIo.h"
#include "wrappers/cli/audio/Metadata.h"
#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileName.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace Cli {

/// The samples of one input: a file, or standard input or another stream.
///
/// Streams are read as they come when they are WAV or raw; other containers need to be gone back
/// to, so a stream of those is first put into a nameless temporary file.
class AudioReader {
public:
    /// Where the bytes come from.
    enum class Source {
        AsFound, ///< what the system knows of them says whether they are a file or a stream
        Spooled  ///< a stream that has been put into a file
    };

    /// `raw` is what standard input, other streams and files ending in .raw hold when they carry no
    /// head. Throws FileError.
    AudioReader(const FileName& name, const std::optional<RawFormat>& raw);

    /// The same of an open file from where it stands; `name` is what it's called.
    AudioReader(FileDescriptor newFile,
                const FileName& name,
                const std::optional<RawFormat>& raw,
                Source newSource);

    int GetSampleRate() const { return info.samplerate; } ///< Hz
    int GetChannels() const { return info.channels; }

    /// Complete format word of libsndfile.
    int GetFormat() const { return info.format; }

    /// Nothing when only the end will show it.
    std::optional<int64_t> GetFrames() const { return frames; }

    const Metadata& GetMetadata() const { return metadata; }

    /// Fills `target` with frames of interleaved samples, full scale 1.0, and returns the number of
    /// frames; fewer than fit only at the end. Throws FileError, also when the input ends before
    /// its head states.
    size_t Read(std::span<double> target);

    /// Leaves the next `count` frames out, where a file's samples all take the same room, so that
    /// nothing needs to be read for it; all of them must be there. Otherwise returns false and
    /// leaves nothing out.
    bool Skip(int64_t count);

private:
    void OpenFile();
    void OpenStream(const std::optional<RawFormat>& raw);
    void OpenWavStream(const std::string& firstBytes);
    void OpenRaw(const RawFormat& raw, DescriptorIo::Access access, std::optional<int64_t> bytes);
    void SpoolStream(const std::string& firstBytes);

    FileDescriptor file;
    Source source;
    std::unique_ptr<DescriptorIo> io;
    SndFileHandle handle;
    SF_INFO info = {};
    std::optional<int64_t> frames;
    int64_t framesRead = 0;
    Metadata metadata;
};

} // namespace Cli
