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

// A report that appears together with the audio, opened by `open`; the reason of a failure names
// it.
template <typename Open>
auto OpenReport(const FileName& name, const Options& options, Open open) -> decltype(open())
{
    if (name.IsEmpty()) {
        return nullptr;
    }
    return Naming(name.Get(), [&] {
        if (!options.isSingle) {
            MakeFolderFor(name);
        }
        return open();
    });
}

std::unique_ptr<OutputFile> OpenReport(const FileName& name, const Options& options)
{
    return OpenReport(
        name, options, [&] { return std::make_unique<OutputFile>(name, options.overwrite); });
}

} // namespace

JobResults::JobResults(const Options& newOptions, const Task& newTask, const AudioReader& newReader)
    : options(newOptions)
    , task(newTask)
    , reader(newReader)
    , channels(static_cast<size_t>(reader.GetChannels()))
    , labels(OpenReport(task.labels, options))
    , plot(OpenReport(task.plot, options))
    , page(OpenReport(task.page, options, [&] {
        return std::make_unique<RecordingPage>(
            task.page, options.overwrite, reader.GetSampleRate(), reader.GetChannels());
    }))
{
    if (plot || page) {
        recorder = std::make_unique<PlotRecorder>(reader.GetSampleRate(), reader.GetChannels());
    }
}

void JobResults::OpenAudio(uint32_t lateFrames)
{
    framesToSkip = lateFrames;
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
        MakeFolderFor(task.output);
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
    if (quantiser && options.KeepsTheRest()) {
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
    const size_t skipped = std::min(framesToSkip, pair.output.size() / channels);
    framesToSkip -= skipped;
    const auto before = pair.input.subspan(skipped * channels);
    const auto after = pair.output.subspan(skipped * channels);
    recorder->Add(before, after);
    if (page) {
        page->Add(before, after);
    }
}

void JobResults::BeginEvents(const FileReport& report,
                             const std::string& words,
                             double repairLimitHz)
{
    if (!recorder) {
        return;
    }
    recorder->Finish();
    if (page) {
        page->Finish();
    }
    if (!plot) {
        return;
    }
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
    caption.regions = regions;
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

void JobResults::Want(const ClipRequest& request)
{
    if (page) {
        page->Want(request);
    }
}

bool JobResults::HasClip(uint64_t event) const
{
    return page && page->HasClip(event);
}

double JobResults::GetChangedShare() const
{
    return page ? page->GetChangedShare() : 0.0;
}

void JobResults::WritePage(const PageHead& head, const std::vector<PageEvent>& events)
{
    if (page) {
        page->Write(head, events, *recorder);
    }
}

void JobResults::SavePlot()
{
    if (painter) {
        Naming(task.plot.Get(), [&] { painter->Save(plot->GetDescriptor()); });
    }
}

void JobResults::Finish()
{
    if (writer) {
        Naming(task.output.OutputLabel(), [&] { writer->Finish(); });
    }
    if (labels) {
        Naming(task.labels.Get(), [&] { labels->Commit(); });
    }
    if (plot) {
        Naming(task.plot.Get(), [&] { plot->Commit(); });
    }
    if (page) {
        page->Commit();
    }
}

} // namespace Cli
