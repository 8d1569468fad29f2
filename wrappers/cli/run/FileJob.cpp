// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/FileJob.h"

#include "wrappers/cli/audio/Alignment.h"
#include "wrappers/cli/audio/AudioReader.h"
#include "wrappers/cli/audio/AudioWriter.h"
#include "wrappers/cli/audio/Quantiser.h"
#include "wrappers/cli/effect/Effect.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/plot/PlotPainter.h"
#include "wrappers/cli/report/Labels.h"
#include "wrappers/cli/run/OutputFormat.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <limits>
#include <memory>

namespace Cli {

namespace {

// Frames read at a time: whole blocks, and enough of them to make a read worth while.
size_t ChunkOf(int block)
{
    const auto frames = static_cast<size_t>(block);
    const size_t least = DefaultBlock;
    return frames >= least ? frames : least / frames * frames;
}

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

// The effect would take them for 0 itself; here they must not enter the difference either.
uint64_t SilenceNonFinite(std::span<double> samples)
{
    const auto isBad = [](double sample) { return !std::isfinite(static_cast<float>(sample)); };
    const auto count = std::count_if(samples.begin(), samples.end(), isBad);
    if (count > 0) {
        std::replace_if(samples.begin(), samples.end(), isBad, 0.0);
    }
    return static_cast<uint64_t>(count);
}

std::string FormatName(int format)
{
    return ContainerName(format) + "/" + SubtypeName(format);
}

/// One recording on its way through.
class FileJob {
public:
    FileJob(const RunContext& newContext, const Task& newTask, size_t newNumber)
        : context(newContext)
        , options(newContext.options)
        , task(newTask)
        , number(newNumber)
        , reader(task.input, options.raw)
        , channels(static_cast<size_t>(reader.GetChannels()))
        , labels(OpenReport(task.labels, options))
        , plot(OpenReport(task.plot, options))
        , effect(context.module,
                 reader.GetSampleRate(),
                 reader.GetChannels(),
                 context.session.settings)
        , alignment(channels,
                    static_cast<size_t>(options.block),
                    effect.GetLatency(),
                    options.keepsLatency ? LatencyMode::Keep : LatencyMode::Trim,
                    [this](float** data, uint32_t frames) { effect.Process(data, frames); })
        , plotFramesToSkip(options.keepsLatency ? effect.GetLatency() : 0)
    {
        if (plot) {
            recorder = std::make_unique<PlotRecorder>(reader.GetSampleRate(), reader.GetChannels());
        }
        if (!task.output.IsEmpty()) {
            OpenWriter();
        }
    }

    void Run(FileReport& report)
    {
        Describe(report);
        ReadAll(report);
        // What follows the recording is no part of its average.
        average = AverageOf(effect.ReadTotals());
        for (auto pair = alignment.Drain(); !pair.output.empty(); pair = alignment.Drain()) {
            Emit(pair);
        }
        SpoolDetections(report.frames);
        report.lostRepairs = effect.GetLostDetections();
        // The picture takes a time of its own, which is no part of the repair's speed.
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        report.seconds = elapsed.count();
        WriteReports(report);
        if (writer) {
            Naming(task.output.OutputLabel(), [&] { writer->Finish(); });
        }
        CommitReports();
        if (context.events != nullptr) {
            context.events->Add(number, report, effect.GetControls(), spool, average);
        }
    }

private:
    void OpenWriter();
    void Describe(FileReport& report) const;
    void ReadAll(FileReport& report);
    void PushBlocks(std::span<const double> samples);
    void Emit(const Alignment::Pair& pair);
    void Record(const Alignment::Pair& pair);
    void SpoolDetections(int64_t framesSoFar);
    void WriteReports(FileReport& report);
    void WriteLabel(const Event& event);
    void CommitReports();
    std::unique_ptr<PlotPainter> MakePainter(const FileReport& report);

    const RunContext& context;
    const Options& options;
    const Task& task;
    size_t number;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    AudioReader reader;
    size_t channels;
    std::unique_ptr<OutputFile> labels;
    std::unique_ptr<OutputFile> plot;
    Effect effect;
    Alignment alignment;
    size_t plotFramesToSkip;
    std::unique_ptr<PlotRecorder> recorder;
    int outputFormat = 0;
    std::unique_ptr<AudioWriter> writer;
    std::unique_ptr<Quantiser> quantiser;
    std::vector<Wrapper::Detection> detections;
    EventSpool spool;
    BandAverage average;
};

void FileJob::OpenWriter()
{
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
    if (target.frames && options.keepsLatency) {
        *target.frames += effect.GetLatency();
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

void FileJob::Describe(FileReport& report) const
{
    report.output = task.output;
    report.sampleRate = reader.GetSampleRate();
    report.channels = reader.GetChannels();
    report.latency = effect.GetLatency();
    report.preset = context.session.preset ? context.session.preset->name : "";
    context.console.Detail(fmt::format("{}: {}, {} Hz, {} channel{}; latency {} samples; {}{}",
                                       Printable(task.input.Get()),
                                       FormatName(reader.GetFormat()),
                                       report.sampleRate,
                                       report.channels,
                                       report.channels == 1 ? "" : "s",
                                       report.latency,
                                       DescribeControls(effect.GetControls()),
                                       writer ? "; writes " + FormatName(outputFormat) : ""));
}

void FileJob::ReadAll(FileReport& report)
{
    std::vector<double> chunk(ChunkOf(options.block) * channels);
    size_t count = chunk.size();
    while (count == chunk.size()) {
        count = reader.Read(chunk) * channels;
        const std::span samples = std::span(chunk).first(count);
        report.nonFiniteSamples += SilenceNonFinite(samples);
        PushBlocks(samples);
        report.frames += static_cast<int64_t>(count / channels);
        SpoolDetections(report.frames);
        context.console.Progress(number, report.frames, reader.GetFrames(), report.sampleRate);
    }
}

void FileJob::PushBlocks(std::span<const double> samples)
{
    const size_t step = static_cast<size_t>(options.block) * channels;
    for (size_t begin = 0; begin < samples.size(); begin += step) {
        Emit(alignment.Push(samples.subspan(begin, std::min(step, samples.size() - begin))));
    }
}

void FileJob::Emit(const Alignment::Pair& pair)
{
    if (recorder) {
        Record(pair);
    }
    if (!writer) {
        return;
    }
    // Rounded before the difference is taken, so that difference and result add up to the input.
    if (quantiser) {
        quantiser->Apply(pair.output);
    }
    if (options.wantsDifference) {
        for (size_t i = 0; i < pair.output.size(); ++i) {
            pair.output[i] = pair.input[i] - pair.output[i];
        }
    }
    Naming(task.output.OutputLabel(), [&] { writer->Write(pair.output); });
}

void FileJob::Record(const Alignment::Pair& pair)
{
    const size_t skipped = std::min(plotFramesToSkip, pair.output.size() / channels);
    plotFramesToSkip -= skipped;
    recorder->Add(pair.input.subspan(skipped * channels), pair.output.subspan(skipped * channels));
}

void FileJob::SpoolDetections(int64_t framesSoFar)
{
    detections.clear();
    effect.ReadDetections(detections);
    // The silence behind the recording can seem to hold something too.
    std::erase_if(detections,
                  [&](const Wrapper::Detection& one) { return one.centre >= framesSoFar; });
    spool.Append(detections);
}

std::unique_ptr<PlotPainter> FileJob::MakePainter(const FileReport& report)
{
    if (!recorder) {
        return nullptr;
    }
    recorder->Finish();
    const Controls& controls = effect.GetControls();
    const auto name = std::filesystem::path(task.input.Get()).filename().string();
    PlotCaption caption;
    caption.title = task.input.IsStream() ? "standard input" : ToUtf8(Printable(name));
    caption.repairLimitHz = controls.GetRepairLimit();
    caption.details = fmt::format("{} Hz, {} channel{}, {}   \u00B7   {}",
                                  report.sampleRate,
                                  report.channels,
                                  report.channels == 1 ? "" : "s",
                                  FormatClock(report.GetDuration()),
                                  ControlCaption(controls));
    return std::make_unique<PlotPainter>(*recorder, caption);
}

void FileJob::WriteReports(FileReport& report)
{
    const std::unique_ptr<PlotPainter> painter = MakePainter(report);
    EventSummary& summary = report.events;
    spool.ForEach([&](const Wrapper::Detection& detection) {
        const Event event = MakeEvent(detection, average, report.sampleRate);
        ++summary.repairs;
        if (!summary.strongest || event.removed > summary.strongest->removed) {
            summary.strongest = event;
        }
        if (!event.isProminent) {
            return;
        }
        ++summary.prominent;
        if (painter) {
            painter->Mark(event);
        }
        if (labels) {
            WriteLabel(event);
        }
        context.console.Detail(fmt::format("{}: plosive at {}, taken down {:.1f} dB",
                                           Printable(task.input.Get()),
                                           FormatClock(event.time),
                                           -event.reduction));
    });
    if (painter) {
        Naming(task.plot.Get(), [&] { painter->Save(plot->GetDescriptor()); });
    }
}

void FileJob::WriteLabel(const Event& event)
{
    const int failure = WriteFully(labels->GetDescriptor(), LabelLine(event));
    if (failure != 0) {
        throw FileError(task.labels.Get() + ": " + FileError::FromErrno(failure).what());
    }
}

void FileJob::CommitReports()
{
    if (labels) {
        Naming(task.labels.Get(), [&] { labels->Commit(); });
    }
    if (plot) {
        Naming(task.plot.Get(), [&] { plot->Commit(); });
    }
}

} // namespace

FileReport RunFile(const RunContext& context, const Task& task, size_t number)
{
    FileReport report;
    report.input = task.input;
    try {
        if (!task.failure.empty()) {
            throw FileError(task.failure);
        }
        FileJob(context, task, number).Run(report);
    } catch (const std::exception& error) {
        report.failure = error.what();
    }
    return report;
}

} // namespace Cli
