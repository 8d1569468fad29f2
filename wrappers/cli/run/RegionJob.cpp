// SPDX-License-Identifier: ISC
#include "wrappers/cli/run/RegionJob.h"

#include "wrappers/cli/autorepair/ChangeFile.h"
#include "wrappers/cli/effect/Effect.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/regions/RegionFile.h"
#include "wrappers/cli/regions/RegionSource.h"
#include "wrappers/cli/run/EffectEvents.h"
#include "wrappers/cli/text/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>

namespace Cli {

namespace {

// What the effect goes back before a region: two seconds and what it reads ahead.
constexpr size_t KeptSeconds = 4;
constexpr size_t KeptFrames = 80000;

/// One recording on its way through: its regions are rendered first, then it's copied with what
/// has changed there.
class RegionJob final : public Wrapper::RenderClient {
public:
    RegionJob(const RunContext& newContext, const Task& newTask, size_t newNumber)
        : context(newContext)
        , options(newContext.options)
        , task(newTask)
        , number(newNumber)
        , input(task.input, options.raw)
        , channels(static_cast<size_t>(input.GetDescription().GetChannels()))
        , sampleRate(input.GetDescription().GetSampleRate())
        , frames(CountFrames())
        , regions(PlaceRegions(ReadWanted(), sampleRate, frames))
        , results(options, task, input.GetDescription())
        , effect(context.module,
                 sampleRate,
                 input.GetDescription().GetChannels(),
                 context.session.settings)
        , events(context, task, results)
        , source(input, KeptSeconds * static_cast<size_t>(sampleRate) + KeptFrames)
        , rendered(channels)
    {
        results.OpenAudio(0);
    }

    void Run(FileReport& report, JobPlaces::Place& place);

    int64_t GetFrames() const override { return frames; }
    void ReadFrames(int64_t position, uint32_t count, float* const* target) override
    {
        source.Read(position, count, target);
    }
    void WriteFrames(int64_t position, uint32_t count, const float* const* made) override;
    bool OnProgress(double done, const char* text) override;
    void OnRepair(const Wrapper::Detection& repair) override
    {
        events.Add({&repair, 1}, sampleRate);
    }

private:
    int64_t CountFrames();
    std::vector<WantedRegion> ReadWanted() const;
    void Describe(FileReport& report) const;
    void Outline();
    void Copy(FileReport& report);
    static void TakeOver(double& sample, double made);
    void ShowProgress(double done) const;

    const RunContext& context;
    const Options& options;
    const Task& task;
    size_t number;
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
    RepeatedInput input;
    size_t channels;
    int sampleRate;
    int64_t frames;
    std::vector<Wrapper::RenderRegion> regions;
    JobResults results;
    Effect effect;
    EffectEvents events;
    RegionSource source;
    ChangeFile rendered;
    std::vector<ChangeFile::Stretch> stretches; // in order of time
    std::vector<double> interleaved;            // scratch
};

// Only the end of some recordings shows how long they are.
int64_t RegionJob::CountFrames()
{
    if (const auto known = input.GetDescription().GetFrames()) {
        return *known;
    }
    input.ReadAll(static_cast<size_t>(options.block),
                  [](int64_t /*first*/, std::span<double> /*samples*/) {});
    return input.GetPosition();
}

std::vector<WantedRegion> RegionJob::ReadWanted() const
{
    std::vector<WantedRegion> wanted = options.regions;
    if (!task.regionFile.IsEmpty()) {
        const auto more = Naming(task.regionFile.Get(),
                                 [&] { return ReadRegionFile(task.regionFile, task.input); });
        wanted.insert(wanted.end(), more.begin(), more.end());
    }
    return wanted;
}

void RegionJob::Run(FileReport& report, JobPlaces::Place& place)
{
    Describe(report);
    Outline();
    events.SetAverage(AverageOf(effect.RenderRegions(*this, regions, options.fade)));
    Copy(report);
    const std::chrono::duration<double> elapsed = std::chrono::steady_clock::now() - start;
    report.seconds = elapsed.count();
    events.Write(report, effect.GetControls());
    results.SavePlot();
    place.Leave();
    results.Finish();
    events.AddToList(number, report, effect.GetControls());
}

void RegionJob::Describe(FileReport& report) const
{
    report.output = task.output;
    report.sampleRate = sampleRate;
    report.channels = static_cast<int>(channels);
    report.frames = frames;
    report.changed = effect.ReadChanged();
    report.preset = context.session.preset ? context.session.preset->name : "";
    if (input.IsSpooled()) {
        ReportSpooling(context, task);
    }
    context.console.Detail(fmt::format("{}: {} Hz, {} channel{}; {} region{}; {}{}",
                                       Printable(task.input.Get()),
                                       sampleRate,
                                       channels,
                                       channels == 1 ? "" : "s",
                                       regions.size(),
                                       regions.size() == 1 ? "" : "s",
                                       DescribeControls(effect.GetControls()),
                                       results.DescribeAudio()));
}

void RegionJob::Outline()
{
    const double rate = sampleRate;
    std::vector<PlotRegion> outlines;
    outlines.reserve(regions.size());
    for (const Wrapper::RenderRegion& region : regions) {
        outlines.push_back({static_cast<double>(region.first) / rate,
                            static_cast<double>(region.end) / rate,
                            region.lowHz,
                            region.highHz});
    }
    results.SetRegions(std::move(outlines));
}

void RegionJob::ShowProgress(double done) const
{
    context.console.Progress(
        number, static_cast<int64_t>(done * static_cast<double>(frames)), frames, sampleRate);
}

bool RegionJob::OnProgress(double done, const char* /*text*/)
{
    ShowProgress(done / 2);
    return true;
}

void RegionJob::WriteFrames(int64_t position, uint32_t count, const float* const* made)
{
    if (!results.WantsSamples()) {
        return;
    }
    interleaved.resize(channels * count);
    for (size_t i = 0; i < interleaved.size(); ++i) {
        interleaved[i] = static_cast<double>(made[i % channels][i / channels]);
    }
    const ChangeFile::Stretch stretch = rendered.Append(position, interleaved);
    if (!stretches.empty() && stretches.back().end == position) {
        stretches.back().end = stretch.end; // they lie behind each other in the file, too
    } else {
        stretches.push_back(stretch);
    }
}

// The change alone, so that whatever the recording holds beyond single precision stays.
void RegionJob::TakeOver(double& sample, double made)
{
    const auto given = static_cast<double>(static_cast<float>(sample));
    if (made != given) {
        sample += made - given;
    }
}

void RegionJob::Copy(FileReport& report)
{
    report.nonFiniteSamples = input.GetNonFinite();
    if (!results.WantsSamples()) {
        return;
    }
    std::vector<double> before;
    input.ReadAll(static_cast<size_t>(options.block),
                  [&](int64_t first, std::span<double> samples) {
                      before.assign(samples.begin(), samples.end());
                      rendered.ForEach(stretches, first, samples, TakeOver);
                      results.Add({before, samples});
                      ShowProgress(0.5 + 0.5 * static_cast<double>(input.GetPosition()) /
                                             static_cast<double>(frames));
                  });
    report.nonFiniteSamples = input.GetNonFinite();
}

} // namespace

void RunRegionFile(const RunContext& context,
                   const Task& task,
                   size_t number,
                   JobPlaces::Place& place,
                   FileReport& report)
{
    RegionJob(context, task, number).Run(report, place);
}

} // namespace Cli
