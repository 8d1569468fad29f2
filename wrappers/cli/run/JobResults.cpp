// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/JobResults.h"

#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/report/Labels.h"
#include "wrappers/cli/run/OutputFormat.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

namespace Cli {

namespace {

void MakeFolderOf(const FileName& name)
{
    const auto folder = std::filesystem::path(name.Get()).parent_path();
    std::error_code failure;
    if (!folder.empty()) {
        std::filesystem::create_directories(folder, failure);
    }
    if (failure) {
        throw FileError(folder.string() + ": " + FileError::FromErrno(failure.value()).what());
    }
}

// A report that appears together with the audio; the reason of a failure names it.
std::unique_ptr<OutputFile> OpenReport(const FileName& name, const Options& options)
{
    if (name.IsEmpty()) {
        return nullptr;
    }
    return Naming(name.Get(), [&] {
        if (!options.isSingle) {
            MakeFolderOf(name);
        }
        return std::make_unique<OutputFile>(name, options.overwrite);
    });
}

} // namespace

JobResults::JobResults(const Options& newOptions, const Task& newTask, const AudioReader& newReader)
    : options(newOptions)
    , task(newTask)
    , reader(newReader)
    , channels(static_cast<size_t>(reader.GetChannels()))
    , labels(OpenReport(task.labels, options))
    , plot(OpenReport(task.plot, options))
{
    if (plot) {
        recorder = std::make_unique<PlotRecorder>(reader.GetSampleRate(), reader.GetChannels());
    }
}

void JobResults::OpenAudio(uint32_t lateFrames)
{
    plotFramesToSkip = lateFrames;
    if (task.output.IsEmpty()) {
        return;
    }
    outputFormat = ChooseOutputFormat(
        {task.input, task.output, reader.GetFormat(), reader.GetSampleRate(), reader.GetChannels()},
        options);
    AudioWriter::Target target;
    target.name = task.output;
    target.overwrite = options.isInPlace ? Overwrite::Allow : options.overwrite;
    target.format = outputFormat;
    target.sampleRate = reader.GetSampleRate();
    target.channels = reader.GetChannels();
    target.frames = reader.GetFrames();
    if (target.frames) {
        *target.frames += lateFrames;
    }
    if (!options.outputDirectory.empty()) {
        MakeFolderOf(task.output);
    }
    writer = Naming(task.output.OutputLabel(),
                    [&] { return std::make_unique<AudioWriter>(target, reader.GetMetadata()); });
    if (KindOf(outputFormat) == SampleKind::Integer) {
        quantiser = std::make_unique<Quantiser>(BitsOf(outputFormat),
                                                options.hasDither ? Quantiser::Dither::Triangular
                                                                  : Quantiser::Dither::Off);
    }
}

std::string JobResults::DescribeAudio() const
{
    return writer ? fmt::format(
                        "; writes {}/{}", ContainerName(outputFormat), SubtypeName(outputFormat))
                  : "";
}

void JobResults::Add(const Alignment::Pair& pair)
{
    if (recorder) {
        Record(pair);
    }
    if (!writer) {
        return;
    }
    // Rounded before the difference is taken, so that difference and result add up to the input.
    if (quantiser && options.IsForWholeFiles()) {
        quantiser->ApplyToChanged(pair.input, pair.output);
    } else if (quantiser) {
        quantiser->Apply(pair.output);
    }
    if (options.wantsDifference) {
        for (size_t i = 0; i < pair.output.size(); ++i) {
            pair.output[i] = pair.input[i] - pair.output[i];
        }
    }
    Naming(task.output.OutputLabel(), [&] { writer->Write(pair.output); });
}

void JobResults::Record(const Alignment::Pair& pair)
{
    const size_t skipped = std::min(plotFramesToSkip, pair.output.size() / channels);
    plotFramesToSkip -= skipped;
    recorder->Add(pair.input.subspan(skipped * channels), pair.output.subspan(skipped * channels));
}

void JobResults::BeginEvents(const FileReport& report,
                             const std::string& words,
                             double repairLimitHz)
{
    if (!recorder) {
        return;
    }
    recorder->Finish();
    const auto name = std::filesystem::path(task.input.Get()).filename().string();
    PlotCaption caption;
    caption.title = task.input.IsStream() ? "standard input" : ToUtf8(Printable(name));
    caption.repairLimitHz = repairLimitHz;
    caption.details = fmt::format("{} Hz, {} channel{}, {}   \u00B7   {}",
                                  report.sampleRate,
                                  report.channels,
                                  report.channels == 1 ? "" : "s",
                                  FormatClock(report.GetDuration()),
                                  words);
    painter = std::make_unique<PlotPainter>(*recorder, caption);
}

void JobResults::Mark(const Event& event)
{
    if (painter) {
        painter->Mark(event);
    }
    if (labels) {
        const int failure = WriteFully(labels->GetDescriptor(), LabelLine(event));
        if (failure != 0) {
            throw FileError(task.labels.Get() + ": " + FileError::FromErrno(failure).what());
        }
    }
}

void JobResults::Finish()
{
    if (painter) {
        Naming(task.plot.Get(), [&] { painter->Save(plot->GetDescriptor()); });
    }
    if (writer) {
        Naming(task.output.OutputLabel(), [&] { writer->Finish(); });
    }
    if (labels) {
        Naming(task.labels.Get(), [&] { labels->Commit(); });
    }
    if (plot) {
        Naming(task.plot.Get(), [&] { plot->Commit(); });
    }
}

} // namespace Cli
