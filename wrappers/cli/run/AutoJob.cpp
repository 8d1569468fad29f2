// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/AutoJob.h"

#include "restoration/dsp/autorepair/Beat.h"
#include "restoration/dsp/autorepair/PopFinder.h"
#include "wrappers/cli/autorepair/LabelTrack.h"
#include "wrappers/cli/autorepair/LevelFile.h"
#include "wrappers/cli/autorepair/RecordingRepairs.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/run/AutoPage.h"
#include "wrappers/cli/run/JobResults.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <chrono>
#include <optional>
#include <vector>

namespace Cli {

namespace {

constexpr int Passes = 3;

/// One recording on its way through.
class AutoJob {
public:
    AutoJob(const RunContext& newContext, const Task& newTask, size_t newNumber)
        : context(newContext)
        , options(newContext.options)
        , task(newTask)
        , number(newNumber)
        , labels(ReadLabels(newTask))
        , input(task.input, options.raw)
        , channels(static_cast<size_t>(input.GetDescription().GetChannels()))
        , sampleRate(input.GetDescription().GetSampleRate())
        , results(options, task, input.GetDescription())
    {
        results.OpenAudio(0);
    }

    void Run(FileReport& report, JobPlaces::Place& place);

private:
    static std::vector<Label> ReadLabels(const Task& task);
    void Describe(FileReport& report) const;
    void Find(FileReport& report);
    void Repair(FileReport& report);
    void Write();
    void Report(FileReport& report);
    void WritePage(FileReport& report, const std::string& words);
    template <typename Take>
    void ReadAll(int pass, Take take);
    void ShowProgress(int pass) const;
    double ToSeconds(int64_t count) const { return static_cast<double>(count) / sampleRate; }

    const RunContext& context;
    const Options& options;
    const Task& task;
    size_t number;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    std::vector<Label> labels; // sorted; none when pops are to be found
    RepeatedInput input;
    size_t channels;
    int sampleRate;
    JobResults results;
    AutoRepair::Findings findings;
    std::optional<RecordingRepairs> repairs; // as soon as the recording's scale is known
};

std::vector<Label> AutoJob::ReadLabels(const Task& task)
{
    if (task.repairLabels.IsEmpty()) {
        return {};
    }
    return Naming(task.repairLabels.Get(), [&] { return ReadLabelTrack(task.repairLabels); });
}

void AutoJob::Run(FileReport& report, JobPlaces::Place& place)
{
    Describe(report);
    Find(report);
    Repair(report);
    if (results.WantsSamples()) {
        Write();
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    report.seconds = elapsed.count();
    Report(report);
    results.SavePlot();
    place.Leave();
    results.Finish();
    if (context.events != nullptr) {
        context.events->Add(number, report, repairs->GetEvents());
    }
}

void AutoJob::Describe(FileReport& report) const
{
    const AudioReader& reader = input.GetDescription();
    report.output = task.output;
    report.sampleRate = sampleRate;
    report.channels = reader.GetChannels();
    report.automatic.emplace();
    if (input.IsSpooled()) {
        ReportSpooling(context, task);
    }
    context.console.Detail(
        fmt::format("{}: {}/{}, {} Hz, {} channel{}; {}{}",
                    Printable(task.input.Get()),
                    ContainerName(reader.GetFormat()),
                    SubtypeName(reader.GetFormat()),
                    report.sampleRate,
                    report.channels,
                    report.channels == 1 ? "" : "s",
                    options.isAutomatic ? "finds pops by itself" : "repairs what is labelled",
                    results.DescribeAudio()));
}

void AutoJob::ShowProgress(int pass) const
{
    const std::optional<int64_t> total = input.GetDescription().GetFrames();
    const int64_t done =
        total ? (pass * *total + input.GetPosition()) / Passes : input.GetPosition();
    context.console.Progress(number, done, total, sampleRate);
}

template <typename Take>
void AutoJob::ReadAll(int pass, Take take)
{
    input.ReadAll(static_cast<size_t>(options.block),
                  [&](int64_t first, std::span<double> samples) {
                      take(first, samples);
                      ShowProgress(pass);
                  });
}

void AutoJob::Find(FileReport& report)
{
    LevelFile levels;
    AutoRepair::PopFinder finder(sampleRate, static_cast<int>(channels), levels);
    ReadAll(0, [&](int64_t /*first*/, std::span<double> samples) { finder.Push(samples); });
    report.frames = input.GetPosition();
    const double seconds = ToSeconds(report.frames);
    report.nonFiniteSamples = input.GetNonFinite();
    findings = finder.Finish();
    if (!options.isAutomatic) {
        Naming(task.repairLabels.Get(), [&] { FitLabels(labels, seconds); });
    }
    report.automatic->isTooShort = options.isAutomatic && seconds < AutoRepair::LeastSeconds;
    report.automatic->speechLevel = findings.scale.speechLevel;
    report.automatic->candidates = findings.candidates.size();
}

void AutoJob::Repair(FileReport& report)
{
    repairs.emplace(
        input, static_cast<size_t>(options.block), findings.scale, [this] { ShowProgress(1); });
    if (options.isAutomatic) {
        report.automatic->threshold =
            repairs->RepairPops(findings.candidates, options.strictness.value_or(0));
    } else {
        repairs->RepairLabels(labels);
    }
}

void AutoJob::Write()
{
    const std::vector<AutoEvent>& events = repairs->GetEvents();
    for (size_t i = 0; i < events.size(); ++i) {
        results.Want(MakeClipRequest(i, events[i]));
    }
    std::vector<double> before;
    ReadAll(2, [&](int64_t first, std::span<double> samples) {
        before.assign(samples.begin(), samples.end());
        repairs->AddTo(first, samples);
        results.Add({before, samples});
    });
}

void AutoJob::Report(FileReport& report)
{
    const std::string words = options.isAutomatic ? fmt::format("found by itself, strictness {}",
                                                                options.strictness.value_or(0))
                                                  : "repaired by labels";
    results.BeginEvents(report, words, AutoRepair::UsualUpperFrequency);
    EventSummary& summary = report.events;
    std::vector<double> times;
    for (const AutoEvent& repair : repairs->GetEvents()) {
        times.push_back(repair.peak);
        const Event event = ToEvent(repair);
        ++summary.repairs;
        ++summary.prominent;
        if (!summary.strongest || event.removed > summary.strongest->removed) {
            summary.strongest = event;
            report.automatic->strongest = repair;
        }
        results.Mark(event);
        context.console.Detail(fmt::format("{}: pop at {}, {:.1f} dB over the speech's low end, "
                                           "taken down {:.1f} dB",
                                           Printable(task.input.Get()),
                                           FormatClock(repair.peak),
                                           repair.before,
                                           repair.before - repair.after));
    }
    if (options.isAutomatic) {
        report.automatic->beat = AutoRepair::FindBeat(times);
    }
    if (!task.page.IsEmpty()) {
        WritePage(report, words);
    }
}

void AutoJob::WritePage(FileReport& report, const std::string& words)
{
    report.page = task.page;
    report.changedShare = results.GetChangedShare();
    const std::vector<AutoEvent>& events = repairs->GetEvents();
    std::vector<PageEvent> rows;
    for (size_t i = 0; i < events.size(); ++i) {
        if (results.HasClip(i)) {
            rows.push_back(MakePageEvent(i, events[i]));
        }
    }
    results.WritePage(MakePageHead(report, words, rows), rows);
}

} // namespace

void RunAutoFile(const RunContext& context,
                 const Task& task,
                 size_t number,
                 JobPlaces::Place& place,
                 FileReport& report)
{
    AutoJob(context, task, number).Run(report, place);
}

} // namespace Cli
