// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/audio/AudioReader.h"

#include <sys/stat.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <vector>

namespace Cli {

/// A recording that is read several times from its first sample. A stream is first put into a
/// nameless temporary file. A file that changes meanwhile is noticed. Throws FileError.
class RepeatedInput {
public:
    RepeatedInput(FileName newName, const std::optional<RawFormat>& newRaw);

    /// Whether it came as a stream.
    bool IsSpooled() const { return source == AudioReader::Source::Spooled; }

    /// What the recording is; not for reading it.
    const AudioReader& GetDescription() const { return *description; }

    /// Starts from the first sample.
    void Begin();

    /// The next samples, as AudioReader::Read() has them; what is no finite number is 0.
    size_t Read(std::span<double> target);

    /// Goes on at frame `target`, which the recording has and which lies no further back, without
    /// reading what lies before it. Returns false, and stays, where that isn't possible.
    bool SkipTo(int64_t target);

    /// Reads all of it, so many frames at a time: calls `take(int64_t first, std::span<double>
    /// samples)`, where `first` is the frame that the samples begin with. The last may be none.
    template <typename Take>
    void ReadAll(size_t framesAtOnce, Take take)
    {
        const auto channels = static_cast<size_t>(description->GetChannels());
        std::vector<double> chunk(framesAtOnce * channels);
        Begin();
        size_t count = chunk.size();
        while (count == chunk.size()) {
            const int64_t first = position;
            count = Read(chunk) * channels;
            take(first, std::span(chunk).first(count));
        }
    }

    /// Frames from the first sample to where reading has come.
    int64_t GetPosition() const { return position; }

    /// How many samples of this pass were no finite numbers.
    uint64_t GetNonFinite() const { return nonFinite; }

private:
    std::unique_ptr<AudioReader> Open() const;
    void RefuseChanged() const;

    FileName name;
    std::optional<RawFormat> raw;
    FileDescriptor file;
    AudioReader::Source source = AudioReader::Source::AsFound;
    int64_t start = 0; // bytes, where reading begins
    struct stat status = {};
    std::unique_ptr<AudioReader> description;
    std::unique_ptr<AudioReader> reader;
    int64_t position = 0;
    uint64_t nonFinite = 0;
};

} // namespace Cli
