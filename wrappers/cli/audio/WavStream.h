// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/audio/Metadata.h"

#include <sndfile.h>

#include <cstdint>
#include <optional>
#include <string>

namespace Cli {

/// The head of a WAV stream, up to the first byte of its samples.
struct WavHead {
    std::string bytes;
    /// Bytes of samples that follow; nothing when the writer couldn't know and samples run to the
    /// end of the stream.
    std::optional<int64_t> dataBytes;
};

/// True for the first 12 bytes of a WAV or RF64 stream.
bool IsWav(std::string_view firstBytes);

/// Reads on from `firstBytes` (12 of them, taken from `descriptor`) to the samples. Throws
/// FileError.
WavHead ReadWavHead(int descriptor, std::string_view firstBytes);

/// What a head holds of the format and beside the samples. Throws FileError.
struct WavDescription {
    SF_INFO info = {};
    Metadata metadata;
};
WavDescription DescribeWavHead(const WavHead& head);

/// The head of a stream in the format of `info` (a WAV container). Without `frames`, or with more
/// than its fields can hold, the sizes stand for "until the end". Throws FileError.
std::string
MakeWavHead(const SF_INFO& info, const Metadata& metadata, std::optional<int64_t> frames);

} // namespace Cli
