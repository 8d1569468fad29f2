// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/OutputFormat.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>
#include <sndfile.h>

#include <filesystem>

namespace Cli {

namespace {

std::string ExtensionOfName(const FileName& name)
{
    const std::string extension = LowerCase(std::filesystem::path(name.Get()).extension().string());
    return extension.empty() ? extension : extension.substr(1);
}

int RawOutput(const FormatQuestion& question, const RawFormat& raw)
{
    if (raw.sampleRate != question.sampleRate || raw.channels != question.channels) {
        throw FileError(fmt::format(
            "has {} Hz and {} channels, but --raw wants {} Hz and {}; nothing is resampled",
            question.sampleRate,
            question.channels,
            raw.sampleRate,
            raw.channels));
    }
    return raw.format;
}

bool IsWavContainer(int container)
{
    return container == SF_FORMAT_WAV || container == SF_FORMAT_WAVEX ||
           container == SF_FORMAT_RF64;
}

std::optional<int> WantedContainer(const FormatQuestion& question, const Options& options)
{
    if (options.container) {
        return options.container;
    }
    const int own = question.format & SF_FORMAT_TYPEMASK;
    if (question.output.IsStream()) {
        return IsWavContainer(own) ? own : SF_FORMAT_WAV;
    }
    // Only a name that the user chose asks for anything; and "wav" may stand on several containers.
    const std::string extension = ExtensionOfName(options.output);
    if (extension.empty() || extension == ExtensionOfName(question.input)) {
        return std::nullopt;
    }
    const auto container = ContainerOfExtension(extension);
    return container == SF_FORMAT_WAV && IsWavContainer(own) ? std::nullopt : container;
}

} // namespace

int ChooseOutputFormat(const FormatQuestion& question, const Options& options)
{
    if (question.output.IsStream() && options.raw && !options.container) {
        return RawOutput(question, *options.raw);
    }
    const auto container = WantedContainer(question, options);
    auto subtype = options.subtype;
    const bool isNamedOpus = ExtensionOfName(options.output) == "opus" && !options.container;
    if (isNamedOpus && !subtype) {
        subtype = SF_FORMAT_OPUS;
    }
    return ChangeFormat(
        question.format, container, subtype, question.sampleRate, question.channels);
}

} // namespace Cli
