// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/audio/DescriptorIo.h"
#include "wrappers/cli/audio/Metadata.h"
#include "wrappers/cli/files/OutputFile.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Cli {

/// The samples of one output: a file that appears whole or not at all, or a stream.
///
/// WAV and raw streams go out as they come; other containers are first put into a nameless
/// temporary file, because their heads are written last.
class AudioWriter {
public:
    struct Target {
        FileName name;
        Overwrite overwrite = Overwrite::Refuse;
        int format = 0; ///< complete format word of libsndfile
        int sampleRate = 0;
        int channels = 0;
        std::optional<int64_t> frames; ///< for the head of a stream; nothing when not known
    };

    /// Throws FileError.
    AudioWriter(const Target& target, const Metadata& metadata);

    /// Writes frames of interleaved samples, full scale 1.0. Integer formats round to the nearest
    /// step and stop at full scale; float formats take any value. Throws FileError.
    void Write(std::span<const double> samples);

    /// Ends the file and puts it under its name. Throws FileError.
    void Finish();

private:
    void OpenContainer(int descriptor, const Metadata& metadata);
    void OpenStream(const Metadata& metadata, std::optional<int64_t> frames);
    void ThrowIfFailed(bool isShort);
    void RefuseTooLong() const;
    sf_count_t WriteIntegers(std::span<const double> samples);

    OutputFile output;
    FileDescriptor spool; // of a stream whose container wants to be gone back to
    std::unique_ptr<DescriptorIo> io;
    SndFileHandle handle;
    SF_INFO info = {};
    int format;
    std::vector<int> integers; // a block in the upper bits of 32-bit words
};

} // namespace Cli
