// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/AutoJob.h"

#include "restoration/dsp/autorepair/KeepRule.h"
#include "restoration/dsp/autorepair/PopFinder.h"
#include "wrappers/cli/autorepair/ChangeFile.h"
#include "wrappers/cli/autorepair/LabelTrack.h"
#include "wrappers/cli/autorepair/LevelFile.h"
#include "wrappers/cli/autorepair/MovingExcerpt.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/run/AutoPage.h"
#include "wrappers/cli/run/JobResults.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <map>

namespace Cli {

namespace {

constexpr int Passes = 3;

/// A span that may be repaired, with what would be added.
struct Attempt {
    AutoEvent event;
    ChangeFile::Stretch stretch;
};

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
        , changes(channels)
        , chunk(static_cast<size_t>(options.block) * channels)
    {
        results.OpenAudio(0);
    }

    void Run(FileReport& report);

private:
    static std::vector<Label> ReadLabels(const Task& task);
    void Describe(FileReport& report) const;
    void Find(FileReport& report);
    void TryCandidates();
    void TryLabels();
    AutoEvent& Add(const AutoRepair::Span& span,
                   const AutoRepair::Excerpt& around,
                   const AutoRepair::Change& change,
                   AutoRepair::SpanRepair& repair);
    AutoRepair::SpanRepair& GetRepair(double upperFrequency);
    double MeasureAfter(const AutoRepair::Span& span,
                        const AutoRepair::Excerpt& excerpt,
                        const AutoRepair::Change& change,
                        AutoRepair::SpanRepair& repair);
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
    ChangeFile changes;
    std::vector<double> chunk;
    int64_t frames = 0;
    AutoRepair::RecordingScale scale;
    std::vector<AutoRepair::Candidate> candidates;
    double threshold = 0;
    std::map<double, AutoRepair::SpanRepair> repairs; // by upper frequency
    std::vector<double> repaired;                     // scratch
    std::vector<Attempt> attempts;                    // in order of time
};

std::vector<Label> AutoJob::ReadLabels(const Task& task)
{
    if (task.repairLabels.IsEmpty()) {
        return {};
    }
    return Naming(task.repairLabels.Get(), [&] { return ReadLabelTrack(task.repairLabels); });
}

void AutoJob::Run(FileReport& report)
{
    Describe(report);
    Find(report);
    if (options.isAutomatic) {
        TryCandidates();
    } else {
        TryLabels();
    }
    if (results.WantsSamples()) {
        Write();
    }
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    report.seconds = elapsed.count();
    Report(report);
    results.Finish();
    if (context.events != nullptr) {
        std::vector<AutoEvent> events;
        events.reserve(attempts.size());
        for (const Attempt& attempt : attempts) {
            events.push_back(attempt.event);
        }
        context.events->Add(number, report, events);
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
        context.console.Result(Printable(task.input.InputLabel()) +
                               ": kept in a temporary file, since it is read more than once");
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
    input.Begin();
    size_t count = chunk.size();
    while (count == chunk.size()) {
        const int64_t first = input.GetPosition();
        count = input.Read(chunk) * channels;
        take(first, std::span(chunk).first(count));
        ShowProgress(pass);
    }
}

void AutoJob::Find(FileReport& report)
{
    LevelFile levels;
    AutoRepair::PopFinder finder(sampleRate, static_cast<int>(channels), levels);
    ReadAll(0, [&](int64_t /*first*/, std::span<double> samples) { finder.Push(samples); });
    frames = input.GetPosition();
    report.frames = frames;
    report.nonFiniteSamples = input.GetNonFinite();
    const AutoRepair::Findings findings = finder.Finish();
    scale = findings.scale;
    if (options.isAutomatic) {
        candidates = findings.candidates;
    } else {
        Naming(task.repairLabels.Get(), [&] { FitLabels(labels, ToSeconds(frames)); });
    }
    report.automatic->isTooShort =
        options.isAutomatic && ToSeconds(frames) < AutoRepair::LeastSeconds;
    report.automatic->speechLevel = scale.speechLevel;
    report.automatic->candidates = candidates.size();
}

AutoRepair::SpanRepair& AutoJob::GetRepair(double upperFrequency)
{
    const auto found =
        repairs.try_emplace(upperFrequency, sampleRate, static_cast<int>(channels), upperFrequency);
    return found.first->second;
}

double AutoJob::MeasureAfter(const AutoRepair::Span& span,
                             const AutoRepair::Excerpt& excerpt,
                             const AutoRepair::Change& change,
                             AutoRepair::SpanRepair& repair)
{
    repaired.assign(excerpt.samples.begin(), excerpt.samples.end());
    const int64_t offset = (change.first - excerpt.first) * static_cast<int64_t>(channels);
    const auto end = static_cast<int64_t>(repaired.size());
    for (size_t i = 0; i < change.samples.size(); ++i) {
        const int64_t place = offset + static_cast<int64_t>(i);
        if (place >= 0 && place < end) {
            repaired[static_cast<size_t>(place)] += change.samples[i];
        }
    }
    return repair.MeasureLowEnd(span, {excerpt.first, repaired});
}

AutoEvent& AutoJob::Add(const AutoRepair::Span& span,
                        const AutoRepair::Excerpt& around,
                        const AutoRepair::Change& change,
                        AutoRepair::SpanRepair& repair)
{
    Attempt& attempt = attempts.emplace_back();
    attempt.stretch = changes.Append(change.first, change.samples);
    AutoEvent& event = attempt.event;
    event.start = span.start;
    event.end = span.end;
    event.removed = change.removed - scale.speechLevel;
    event.peak = std::clamp(ToSeconds(change.loudest), 0.0, ToSeconds(frames));
    event.before = repair.MeasureLowEnd(span, around) - scale.lowEnd;
    event.after = MeasureAfter(span, around, change, repair) - scale.lowEnd;
    return event;
}

void AutoJob::TryLabels()
{
    MovingExcerpt excerpt(input, static_cast<size_t>(options.block));
    for (const Label& label : labels) {
        AutoRepair::SpanRepair& repair = GetRepair(label.upperFrequency);
        const AutoRepair::Excerpt around = excerpt.Cover(repair.GetReach(label.span));
        const AutoRepair::Change change = repair.Compute(label.span, around);
        Add(label.span, around, change, repair).upperFrequency = label.upperFrequency;
        ShowProgress(1);
    }
}

void AutoJob::TryCandidates()
{
    MovingExcerpt excerpt(input, static_cast<size_t>(options.block));
    AutoRepair::SpanRepair& repair = GetRepair(AutoRepair::UsualUpperFrequency);
    AutoRepair::KeepRule rule(options.strictness.value_or(0));
    for (const AutoRepair::Candidate& candidate : candidates) {
        const AutoRepair::Excerpt around = excerpt.Cover(repair.GetReach(candidate.span));
        const AutoRepair::Change change = repair.Compute(candidate.span, around);
        const double keep = AutoRepair::GetKeep(candidate, change.removed - scale.speechLevel);
        rule.Count(keep);
        // What no threshold lets through need not wait for it.
        if (keep > rule.GetLeastThreshold()) {
            AutoEvent& event = Add(candidate.span, around, change, repair);
            event.upperFrequency = AutoRepair::UsualUpperFrequency;
            event.score = candidate.score;
            event.keep = keep;
        }
        ShowProgress(1);
    }
    threshold = rule.GetThreshold(ToSeconds(frames));
    std::erase_if(attempts,
                  [this](const Attempt& attempt) { return attempt.event.keep <= threshold; });
}

void AutoJob::Write()
{
    std::vector<double> before;
    for (size_t i = 0; i < attempts.size(); ++i) {
        results.Want(MakeClipRequest(i, attempts[i].event));
    }
    size_t next = 0; // the first attempt that isn't wholly done
    ReadAll(2, [&](int64_t first, std::span<double> samples) {
        before.assign(samples.begin(), samples.end());
        const int64_t end = first + static_cast<int64_t>(samples.size() / channels);
        while (next < attempts.size() && attempts[next].stretch.end <= first) {
            ++next;
        }
        for (size_t i = next; i < attempts.size() && attempts[i].stretch.first < end; ++i) {
            changes.AddTo(attempts[i].stretch, first, samples);
        }
        results.Add({before, samples});
    });
}

void AutoJob::Report(FileReport& report)
{
    report.automatic->threshold = threshold;
    const std::string words = options.isAutomatic ? fmt::format("found by itself, strictness {}",
                                                                options.strictness.value_or(0))
                                                  : "repaired by labels";
    results.BeginEvents(report, words, AutoRepair::UsualUpperFrequency);
    EventSummary& summary = report.events;
    for (const Attempt& attempt : attempts) {
        const Event event = ToEvent(attempt.event);
        ++summary.repairs;
        ++summary.prominent;
        if (!summary.strongest || event.removed > summary.strongest->removed) {
            summary.strongest = event;
            report.automatic->strongest = attempt.event;
        }
        results.Mark(event);
        context.console.Detail(fmt::format("{}: pop at {}, {:.1f} dB over the speech's low end, "
                                           "taken down {:.1f} dB",
                                           Printable(task.input.Get()),
                                           FormatClock(attempt.event.peak),
                                           attempt.event.before,
                                           attempt.event.before - attempt.event.after));
    }
    if (!task.page.IsEmpty()) {
        WritePage(report, words);
    }
}

void AutoJob::WritePage(FileReport& report, const std::string& words)
{
    report.page = task.page;
    report.changedShare = results.GetChangedShare();
    std::vector<PageEvent> rows;
    for (size_t i = 0; i < attempts.size(); ++i) {
        if (results.HasClip(i)) {
            rows.push_back(MakePageEvent(i, attempts[i].event));
        }
    }
    results.WritePage(MakePageHead(report, words, rows), rows);
}

} // namespace

void RunAutoFile(const RunContext& context, const Task& task, size_t number, FileReport& report)
{
    AutoJob(context, task, number).Run(report);
}

} // namespace Cli
