// SPDX-License-Identifier: ISC
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Cli {

/// What a raw stream holds: `format` is a complete format word of libsndfile.
struct RawFormat {
    int format = 0;
    int sampleRate = 0; ///< Hz
    int channels = 0;
};

/// How samples of a subtype are stored.
enum class SampleKind { Integer, Float, Lossy };

/// The container called `name` ("wav", "flac", ...) as a major format of libsndfile.
std::optional<int> FindContainer(std::string_view name);

/// The container that files with this extension (no dot, any case) usually have.
std::optional<int> ContainerOfExtension(std::string_view extension);

/// True when the file's name ends as recordings do, such as in ".wav".
bool HasNameOfRecording(const std::string& path);

/// The usual extension of a container, without a dot.
std::string ExtensionOf(int format);

/// The subtype called `name` ("pcm_16", "float", ...; case and "_" don't count).
std::optional<int> FindSubtype(std::string_view name);

std::string ContainerName(int format);
std::string SubtypeName(int format);

/// All names that FindContainer() and FindSubtype() know.
std::vector<std::string> ContainerNames();
std::vector<std::string> SubtypeNames();

SampleKind KindOf(int format);

/// Bits of an Integer subtype; companded and difference-coded forms count as 16.
int BitsOf(int format);

/// Bytes of one sample of a format whose samples lie one after another, 0 for every other format.
int BytesPerSample(int format);

/// `format` with another container and subtype, where given. A subtype that wasn't asked for and
/// that the container can't hold gives way to the nearest one that loses least. Throws FileError
/// when the container can't hold what was asked for.
int ChangeFormat(int format,
                 std::optional<int> container,
                 std::optional<int> subtype,
                 int sampleRate,
                 int channels);

/// Reads "FORMAT,RATE,CHANNELS", FORMAT being s8, u8, s16, s24, s32, f32, f64, ulaw or alaw, the
/// wider ones with "le" (the default) or "be" behind it. Throws UsageError.
RawFormat ParseRawFormat(std::string_view text);

} // namespace Cli
