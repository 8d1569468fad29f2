// SPDX-License-Identifier: ISC
#include "wrappers/cli/audio/AudioFormat.h"

#include "wrappers/cli/audio/Limits.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>
#include <sndfile.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>

namespace Cli {

namespace {

struct Container {
    const char* name;
    int major;
    const char* extensions; // separated and closed by blanks, the usual one first
    int subtype;            // where the input's own doesn't fit and nothing nearer does
};

constexpr std::array Containers = {
    Container{"wav", SF_FORMAT_WAV, "wav wave bwf ", SF_FORMAT_PCM_24},
    Container{"wavex", SF_FORMAT_WAVEX, "wav ", SF_FORMAT_PCM_24},
    Container{"rf64", SF_FORMAT_RF64, "rf64 ", SF_FORMAT_PCM_24},
    Container{"w64", SF_FORMAT_W64, "w64 ", SF_FORMAT_PCM_24},
    Container{"aiff", SF_FORMAT_AIFF, "aiff aif aifc ", SF_FORMAT_PCM_24},
    Container{"au", SF_FORMAT_AU, "au snd ", SF_FORMAT_PCM_24},
    Container{"caf", SF_FORMAT_CAF, "caf ", SF_FORMAT_PCM_24},
    Container{"flac", SF_FORMAT_FLAC, "flac ", SF_FORMAT_PCM_24},
    Container{"ogg", SF_FORMAT_OGG, "ogg oga ", SF_FORMAT_VORBIS},
    Container{"opus", SF_FORMAT_OGG, "opus ", SF_FORMAT_OPUS},
    Container{"mp3", SF_FORMAT_MPEG, "mp3 ", SF_FORMAT_MPEG_LAYER_III},
    Container{"raw", SF_FORMAT_RAW, "raw ", SF_FORMAT_PCM_16},
    Container{"voc", SF_FORMAT_VOC, "voc ", SF_FORMAT_PCM_16},
    Container{"nist", SF_FORMAT_NIST, "nist sph ", SF_FORMAT_PCM_16},
    Container{"ircam", SF_FORMAT_IRCAM, "sf ircam ", SF_FORMAT_PCM_16},
    Container{"paf", SF_FORMAT_PAF, "paf ", SF_FORMAT_PCM_24},
};

struct Subtype {
    const char* name;
    int value;
    SampleKind kind;
    int bits;
};

constexpr std::array Subtypes = {
    Subtype{"pcm_s8", SF_FORMAT_PCM_S8, SampleKind::Integer, 8},
    Subtype{"pcm_u8", SF_FORMAT_PCM_U8, SampleKind::Integer, 8},
    Subtype{"pcm_16", SF_FORMAT_PCM_16, SampleKind::Integer, 16},
    Subtype{"pcm_24", SF_FORMAT_PCM_24, SampleKind::Integer, 24},
    Subtype{"pcm_32", SF_FORMAT_PCM_32, SampleKind::Integer, 32},
    Subtype{"float", SF_FORMAT_FLOAT, SampleKind::Float, 0},
    Subtype{"double", SF_FORMAT_DOUBLE, SampleKind::Float, 0},
    Subtype{"ulaw", SF_FORMAT_ULAW, SampleKind::Integer, 16},
    Subtype{"alaw", SF_FORMAT_ALAW, SampleKind::Integer, 16},
    Subtype{"ima_adpcm", SF_FORMAT_IMA_ADPCM, SampleKind::Integer, 16},
    Subtype{"ms_adpcm", SF_FORMAT_MS_ADPCM, SampleKind::Integer, 16},
    Subtype{"gsm610", SF_FORMAT_GSM610, SampleKind::Integer, 16},
    Subtype{"alac_16", SF_FORMAT_ALAC_16, SampleKind::Integer, 16},
    Subtype{"alac_20", SF_FORMAT_ALAC_20, SampleKind::Integer, 20},
    Subtype{"alac_24", SF_FORMAT_ALAC_24, SampleKind::Integer, 24},
    Subtype{"alac_32", SF_FORMAT_ALAC_32, SampleKind::Integer, 32},
    Subtype{"vorbis", SF_FORMAT_VORBIS, SampleKind::Lossy, 0},
    Subtype{"opus", SF_FORMAT_OPUS, SampleKind::Lossy, 0},
    Subtype{"mp3", SF_FORMAT_MPEG_LAYER_III, SampleKind::Lossy, 0},
};

const Subtype* FindEntry(int format)
{
    const auto* entry = std::find_if(Subtypes.begin(), Subtypes.end(), [&](const Subtype& s) {
        return s.value == (format & SF_FORMAT_SUBMASK);
    });
    return entry == Subtypes.end() ? nullptr : entry;
}

bool IsPossible(int format, int sampleRate, int channels)
{
    SF_INFO info = {};
    info.samplerate = sampleRate;
    info.channels = channels;
    info.format = format;
    return sf_format_check(&info) != 0;
}

// Subtypes that hold all that `subtype` holds come first, then ever narrower ones.
std::vector<int> Substitutes(int subtype, int container)
{
    std::vector<int> result;
    const auto* usual = std::find_if(
        Containers.begin(), Containers.end(), [&](const auto& c) { return c.major == container; });
    const bool isEightBit = subtype == SF_FORMAT_PCM_U8 || subtype == SF_FORMAT_PCM_S8;
    if (isEightBit) {
        result = {SF_FORMAT_PCM_U8, SF_FORMAT_PCM_S8, SF_FORMAT_PCM_16};
    }
    const int bits = BitsOf(subtype);
    if (bits == 20 || bits == 24) {
        result.push_back(SF_FORMAT_PCM_24);
    }
    if (bits == 32) {
        result.push_back(SF_FORMAT_PCM_32);
    }
    if (bits == 16) {
        result.push_back(SF_FORMAT_PCM_16);
    }
    if (subtype == SF_FORMAT_DOUBLE) {
        result.push_back(SF_FORMAT_FLOAT);
    }
    if (usual != Containers.end()) {
        result.push_back(usual->subtype);
    }
    result.insert(result.end(), {SF_FORMAT_PCM_24, SF_FORMAT_PCM_16});
    return result;
}

int NumberBehind(std::string_view text, const char* what, int least, int most)
{
    int value = 0;
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (failure != std::errc{} || end != text.data() + text.size() || value < least ||
        value > most) {
        throw UsageError(
            fmt::format("--raw: the {} \"{}\" is outside {} to {}", what, text, least, most));
    }
    return value;
}

struct RawName {
    const char* name;
    int subtype;
};

constexpr std::array RawNames = {RawName{"s8", SF_FORMAT_PCM_S8},
                                 RawName{"u8", SF_FORMAT_PCM_U8},
                                 RawName{"s16", SF_FORMAT_PCM_16},
                                 RawName{"s24", SF_FORMAT_PCM_24},
                                 RawName{"s32", SF_FORMAT_PCM_32},
                                 RawName{"f32", SF_FORMAT_FLOAT},
                                 RawName{"f64", SF_FORMAT_DOUBLE},
                                 RawName{"ulaw", SF_FORMAT_ULAW},
                                 RawName{"alaw", SF_FORMAT_ALAW}};

int ParseRawName(std::string_view text)
{
    std::string name = LowerCase(text);
    int endian = SF_ENDIAN_LITTLE;
    if (name.ends_with("be")) {
        endian = SF_ENDIAN_BIG;
    }
    if (name.ends_with("be") || name.ends_with("le")) {
        name.resize(name.size() - 2);
    }
    for (const RawName& raw : RawNames) {
        if (name == raw.name) {
            return SF_FORMAT_RAW | raw.subtype | endian;
        }
    }
    throw UsageError(fmt::format("--raw: the format \"{}\" is none of s8, u8, s16, s24, s32, f32, "
                                 "f64, ulaw and alaw (with le or be behind it)",
                                 text));
}

} // namespace

std::optional<int> FindContainer(std::string_view name)
{
    for (const Container& container : Containers) {
        if (LowerCase(name) == container.name) {
            return container.major;
        }
    }
    return std::nullopt;
}

std::optional<int> ContainerOfExtension(std::string_view extension)
{
    const std::string wanted = LowerCase(extension) + " ";
    for (const Container& container : Containers) {
        const std::string known = std::string(" ") + container.extensions;
        if (wanted.size() > 1 && known.find(" " + wanted) != std::string::npos) {
            return container.major;
        }
    }
    return std::nullopt;
}

bool HasNameOfRecording(const std::string& path)
{
    const std::string extension = std::filesystem::path(path).extension().string();
    return extension.size() > 1 && ContainerOfExtension(extension.substr(1)).has_value();
}

std::string ExtensionOf(int format)
{
    for (const Container& container : Containers) {
        const bool isOpus = (format & SF_FORMAT_SUBMASK) == SF_FORMAT_OPUS;
        if (container.major != (format & SF_FORMAT_TYPEMASK) ||
            isOpus != (container.subtype == SF_FORMAT_OPUS)) {
            continue;
        }
        const std::string_view all = container.extensions;
        return std::string(all.substr(0, all.find(' ')));
    }
    return "audio";
}

std::optional<int> FindSubtype(std::string_view name)
{
    const auto plain = [](std::string text) {
        std::erase(text, '_');
        return text;
    };
    for (const Subtype& subtype : Subtypes) {
        if (plain(LowerCase(name)) == plain(subtype.name)) {
            return subtype.value;
        }
    }
    return std::nullopt;
}

std::string ContainerName(int format)
{
    for (const Container& container : Containers) {
        if (container.major == (format & SF_FORMAT_TYPEMASK)) {
            return container.name;
        }
    }
    return "other";
}

std::string SubtypeName(int format)
{
    const Subtype* entry = FindEntry(format);
    return entry != nullptr ? entry->name : "other";
}

std::vector<std::string> ContainerNames()
{
    std::vector<std::string> names;
    names.reserve(Containers.size());
    for (const Container& container : Containers) {
        names.emplace_back(container.name);
    }
    return names;
}

std::vector<std::string> SubtypeNames()
{
    std::vector<std::string> names;
    names.reserve(Subtypes.size());
    for (const Subtype& subtype : Subtypes) {
        names.emplace_back(subtype.name);
    }
    return names;
}

SampleKind KindOf(int format)
{
    const Subtype* entry = FindEntry(format);
    return entry != nullptr ? entry->kind : SampleKind::Integer;
}

int BitsOf(int format)
{
    const Subtype* entry = FindEntry(format);
    return entry != nullptr ? entry->bits : 16;
}

int BytesPerSample(int format)
{
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW:
        return 1;
    case SF_FORMAT_PCM_16:
        return 2;
    case SF_FORMAT_PCM_24:
        return 3;
    case SF_FORMAT_PCM_32:
    case SF_FORMAT_FLOAT:
        return 4;
    case SF_FORMAT_DOUBLE:
        return 8;
    default:
        return 0;
    }
}

int ChangeFormat(int format,
                 std::optional<int> container,
                 std::optional<int> subtype,
                 int sampleRate,
                 int channels)
{
    // The byte order belongs to the container that it came with.
    int major = format & (SF_FORMAT_TYPEMASK | SF_FORMAT_ENDMASK);
    if (container && *container != (format & SF_FORMAT_TYPEMASK)) {
        major = *container;
    }
    const int wanted = major | subtype.value_or(format & SF_FORMAT_SUBMASK);
    if (IsPossible(wanted, sampleRate, channels)) {
        return wanted;
    }
    if (!subtype) {
        for (const int other :
             Substitutes(format & SF_FORMAT_SUBMASK, major & SF_FORMAT_TYPEMASK)) {
            if (IsPossible(major | other, sampleRate, channels)) {
                return major | other;
            }
        }
    }
    throw FileError(fmt::format("{} can't hold {} with {} channel{} at {} Hz",
                                ContainerName(wanted),
                                SubtypeName(wanted),
                                channels,
                                channels == 1 ? "" : "s",
                                sampleRate));
}

RawFormat ParseRawFormat(std::string_view text)
{
    const size_t first = text.find(',');
    const size_t second = first == std::string_view::npos ? first : text.find(',', first + 1);
    if (second == std::string_view::npos) {
        throw UsageError("--raw wants FORMAT,RATE,CHANNELS, such as s16,48000,1");
    }
    RawFormat raw;
    raw.format = ParseRawName(text.substr(0, first));
    raw.sampleRate = NumberBehind(
        text.substr(first + 1, second - first - 1), "rate", LeastSampleRate, GreatestSampleRate);
    raw.channels = NumberBehind(text.substr(second + 1), "channel count", 1, GreatestChannelCount);
    return raw;
}

} // namespace Cli
