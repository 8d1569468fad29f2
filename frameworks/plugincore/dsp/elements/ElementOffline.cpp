// SPDX-License-Identifier: ISC
// How an element works on regions of a recording.
#include "frameworks/plugincore/dsp/elements/ElementImpl.h"
#include "frameworks/plugincore/dsp/elements/RegionRun.h"
#include "frameworks/plugincore/dsp/offline/RegionPlan.h"
#include "frameworks/qobase/util/Realtime.h"
#include "frameworks/qobase/util/ScopedFlag.h"

#include <algorithm>
#include <cmath>

namespace DSP {

namespace {

constexpr Preroll UsualPreroll = {32, true}; // frames
constexpr double WarmupSeconds = 2;

int64_t CountFrames(const std::vector<Region>& regions)
{
    int64_t frames = 0;
    for (const Region& region : regions) {
        frames += region.GetLength();
    }
    return frames;
}

// Empty where there is one region: that needs no number.
String MakeLabel(std::size_t index, std::size_t count)
{
    if (count < 2) {
        return "";
    }
    return String(" (region %1/%2)")
        .arg(static_cast<uint64_t>(index + 1))
        .arg(static_cast<uint64_t>(count));
}

} // namespace

Preroll ElementImpl::GetPreroll() const
{
    return UsualPreroll;
}

uint32_t ElementImpl::GetWarmupFrames() const
{
    return GetLatency(Context::Process) +
           static_cast<uint32_t>(std::lround(WarmupSeconds * static_cast<double>(GetSampleRate())));
}

void ElementImpl::GetRegionInfo(std::vector<Region>& regions,
                                OfflineSource& source,
                                const OfflineJob& job) const
{
    regions = PlanRegions(
        source.GetBoxes(),
        {source.GetFrames(), static_cast<double>(GetSampleRate()), job.GetFadeMilliseconds()});
}

std::unique_ptr<RegionCrossover> ElementImpl::PrepareCrossover(const OfflineJob& /*job*/,
                                                               const Region& region)
{
    return std::make_unique<RegionCrossover>(region);
}

OfflineResult ElementImpl::RunOffline(OfflineJob& job)
{
    const Util::CriticalSectionGuard guard(host.GetProcessLock());
    if (runsOffline) {
        return OfflineResult::Busy; // a call from within the job
    }
    const Util::ScopedDenormalGuard denormalGuard;
    const Util::ScopedFlag running(runsOffline);
    ProcessCommands();
    job.SetPreroll(GetPreroll());
    if (ProcessesBlocks()) {
        initialised = false;
    }
    const OfflineResult result = RunRegions(job);
    ClearState();
    return result;
}

OfflineResult ElementImpl::RunRegions(OfflineJob& job)
{
    std::vector<Region> regions;
    GetRegionInfo(regions, job.GetSource(), job);
    RegionRun run(job, *this);
    const auto warmup = static_cast<double>(GetLatency(Context::Process));
    const double total =
        static_cast<double>(CountFrames(regions)) + static_cast<double>(regions.size()) * warmup;
    double done = 0;
    for (std::size_t i = 0; i < regions.size(); ++i) {
        if (ClearsBetweenRegions()) {
            ClearState();
        } else {
            Reset();
        }
        const double begin = done;
        done += static_cast<double>(regions[i].GetLength()) + warmup;
        const OfflineResult result =
            RunRegion(run, regions[i], {begin / total, done / total, MakeLabel(i, regions.size())});
        if (result != OfflineResult::Done) {
            return result;
        }
    }
    return OfflineResult::Done;
}

OfflineResult ElementImpl::RunRegion(RegionRun& run, const Region& region, const RegionShare& share)
{
    OfflineJob& job = run.GetJob();
    if (!job.Progress(share.begin, "Initializing crossover")) {
        return OfflineResult::Cancelled;
    }
    const std::unique_ptr<RegionCrossover> crossover = PrepareCrossover(job, region);
    uint32_t lead = 0;
    if (job.GetPreroll().isWanted) {
        lead = std::max(GetWarmupFrames() + crossover->GetLatency(), job.GetPreroll().frames);
    }
    const String text = String("Running %1%2").arg(name).arg(share.label);
    return run.Run(region, lead, *crossover, [&](double fraction) {
        // The end exactly where there is nothing more: rounding could fall short of it.
        const double place =
            fraction < 1 ? share.begin + fraction * (share.end - share.begin) : share.end;
        return job.Progress(place, text);
    });
}

} // namespace DSP
