// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/FileJob.h"

#include "wrappers/cli/audio/Alignment.h"
#include "wrappers/cli/audio/AudioReader.h"
#include "wrappers/cli/audio/Finite.h"
#include "wrappers/cli/effect/Effect.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/run/AutoJob.h"
#include "wrappers/cli/run/EffectEvents.h"
#include "wrappers/cli/run/RegionJob.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>

namespace Cli {

namespace {

// Frames read at a time: whole blocks, and enough of them to make a read worth while.
size_t ChunkOf(int block)
{
    const auto frames = static_cast<size_t>(block);
    const size_t least = DefaultBlock;
    return frames >= least ? frames : least / frames * frames;
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
        , results(options, task, reader)
        , effect(context.module,
                 reader.GetSampleRate(),
                 reader.GetChannels(),
                 context.session.settings)
        , alignment(channels,
                    static_cast<size_t>(options.block),
                    effect.GetLatency(),
                    options.keepsLatency ? LatencyMode::Keep : LatencyMode::Trim,
                    [this](float** data, uint32_t frames) { effect.Process(data, frames); })
        , events(context, task, results)
    {
        results.OpenAudio(options.keepsLatency ? effect.GetLatency() : 0);
    }

    void Run(FileReport& report, JobPlaces::Place& place)
    {
        Describe(report);
        ReadAll(report);
        // What follows the recording is no part of its average.
        events.SetAverage(AverageOf(effect.ReadTotals()));
        for (auto pair = alignment.Drain(); !pair.output.empty(); pair = alignment.Drain()) {
            SpoolDetections();
            results.Add(pair);
        }
        SpoolDetections();
        report.lostRepairs = effect.GetLostDetections();
        // The picture takes a time of its own, which is no part of the repair's speed.
        const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
        report.seconds = elapsed.count();
        events.Write(report, effect.GetControls());
        results.SavePlot();
        place.Leave();
        results.Finish();
        events.AddToList(number, report, effect.GetControls());
    }

private:
    void Describe(FileReport& report) const;
    void ReadAll(FileReport& report);
    void PushBlocks(std::span<const double> samples);
    void SpoolDetections();

    const RunContext& context;
    const Options& options;
    const Task& task;
    size_t number;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    AudioReader reader;
    size_t channels;
    JobResults results;
    Effect effect;
    Alignment alignment;
    std::vector<Wrapper::Detection> detections;
    EffectEvents events;
    int64_t framesPushed = 0;
};

void FileJob::Describe(FileReport& report) const
{
    report.output = task.output;
    report.sampleRate = reader.GetSampleRate();
    report.channels = reader.GetChannels();
    report.latency = effect.GetLatency();
    report.changed = effect.ReadChanged();
    report.preset = context.session.preset ? context.session.preset->name : "";
    context.console.Detail(fmt::format("{}: {}, {} Hz, {} channel{}; latency {} samples; {}{}",
                                       Printable(task.input.Get()),
                                       FormatName(reader.GetFormat()),
                                       report.sampleRate,
                                       report.channels,
                                       report.channels == 1 ? "" : "s",
                                       report.latency,
                                       DescribeControls(effect.GetControls()),
                                       results.DescribeAudio()));
}

void FileJob::ReadAll(FileReport& report)
{
    std::vector<double> chunk(ChunkOf(options.block) * channels);
    size_t count = chunk.size();
    while (count == chunk.size()) {
        count = reader.Read(chunk) * channels;
        const std::span samples = std::span(chunk).first(count);
        // The effect would take them for 0 itself; here they must not enter the difference either.
        report.nonFiniteSamples += SilenceNonFinite(samples);
        PushBlocks(samples);
        report.frames += static_cast<int64_t>(count / channels);
        context.console.Progress(number, report.frames, reader.GetFrames(), report.sampleRate);
    }
}

void FileJob::PushBlocks(std::span<const double> samples)
{
    const size_t step = static_cast<size_t>(options.block) * channels;
    for (size_t begin = 0; begin < samples.size(); begin += step) {
        const auto block = samples.subspan(begin, std::min(step, samples.size() - begin));
        const auto pair = alignment.Push(block);
        framesPushed += static_cast<int64_t>(block.size() / channels);
        // A repair is known before what it made comes out: its clip is asked for in time.
        SpoolDetections();
        results.Add(pair);
    }
}

void FileJob::SpoolDetections()
{
    detections.clear();
    effect.ReadDetections(detections);
    // The silence behind the recording can seem to hold something too.
    std::erase_if(detections,
                  [&](const Wrapper::Detection& one) { return one.centre >= framesPushed; });
    events.Add(detections, reader.GetSampleRate());
}

} // namespace

FileReport
RunFile(const RunContext& context, const Task& task, size_t number, JobPlaces::Place& place)
{
    FileReport report;
    report.input = task.input;
    try {
        if (!task.failure.empty()) {
            throw FileError(task.failure);
        }
        if (context.options.IsForWholeFiles()) {
            RunAutoFile(context, task, number, place, report);
        } else if (context.options.HasRegions()) {
            RunRegionFile(context, task, number, place, report);
        } else {
            FileJob(context, task, number).Run(report, place);
        }
    } catch (const std::exception& error) {
        report.failure = error.what();
    }
    return report;
}

} // namespace Cli
