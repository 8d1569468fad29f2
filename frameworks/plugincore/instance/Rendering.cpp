// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/Rendering.h"

#include "frameworks/plugincore/dsp/offline/RegionPlan.h"
#include "frameworks/plugincore/dsp/path/ElementState.h"
#include "frameworks/plugincore/instance/OfflineHost.h"
#include "frameworks/plugincore/instance/RenderJob.h"
#include "frameworks/plugincore/product/PluginInfo.h"

#include <exception>

namespace {

constexpr uint32_t MaxBlockFrames = 512; // what comes out doesn't depend on it
constexpr float LongestFade = 10000;     // ms

void SetResult(RenderRecord& record, PluginCoreRenderResult result, const String& message)
{
    record.result = result;
    CopyText(record.message, message);
}

const char* Describe(DSP::BoxFault fault)
{
    switch (fault) {
    case DSP::BoxFault::IsEmpty:
        return "Region %1 is empty: its last frame is before its first one.";
    case DSP::BoxFault::IsOutside:
        return "Region %1 lies outside of the recording.";
    case DSP::BoxFault::HasNoBand:
        return "Region %1 has no frequencies: its upper bound is not above its lower one.";
    case DSP::BoxFault::IsAboveNyquist:
        return "Region %1 lies above half the sample rate.";
    case DSP::BoxFault::None:
        break;
    }
    return "";
}

void SetResult(RenderRecord& record, DSP::OfflineResult result, bool wasStopped)
{
    switch (result) {
    case DSP::OfflineResult::Done:
        SetResult(record, RenderDone, "");
        break;
    case DSP::OfflineResult::Cancelled:
        if (wasStopped) {
            SetResult(
                record, RenderStopped, "The stream format has changed, or the instance ends.");
        } else {
            SetResult(record, RenderCancelled, "Cancelled.");
        }
        break;
    case DSP::OfflineResult::SourceFailed:
        SetResult(record, RenderSourceFailed, "The recording could not be read.");
        break;
    case DSP::OfflineResult::SinkFailed:
        SetResult(record, RenderSinkFailed, "The result could not be written.");
        break;
    case DSP::OfflineResult::Busy:
        SetResult(record, RenderBusy, "Another rendering is under way.");
        break;
    }
}

bool HasSense(const RenderRecord& record)
{
    const bool hasFade = record.fadeMilliseconds >= 0 && record.fadeMilliseconds <= LongestFade;
    return hasFade && record.frames >= 0;
}

} // namespace

/// The one rendering at a time that an instance has.
class Rendering::Turn {
public:
    explicit Turn(Rendering& newRendering)
        : rendering(newRendering)
    {
        const Util::CriticalSectionGuard guard(rendering.turnLock);
        isMine = !rendering.isTaken && !rendering.hasEnded;
        rendering.isTaken = rendering.isTaken || isMine;
    }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn()
    {
        if (isMine) {
            // Notified within the lock: whoever waits may end the instance as soon as it is free.
            const Util::CriticalSectionGuard guard(rendering.turnLock);
            rendering.isTaken = false;
            rendering.turnEnded.notify_all();
        }
    }

    bool IsMine() const { return isMine; }

private:
    Rendering& rendering;
    bool isMine = false;
};

Rendering::Rendering(const Setup& newSetup)
    : setup(newSetup)
{
}

void Rendering::End()
{
    const Util::CriticalSectionGuard guard(turnLock);
    hasEnded = true;
    Stop();
    while (isTaken) {
        turnEnded.wait(turnLock);
    }
}

uint32_t Rendering::Answer(RenderRecord& record)
{
    if (record.recordBytes != sizeof(RenderRecord) ||
        record.regionBytes != sizeof(RenderRegionRecord)) {
        return PluginCoreUnsupported;
    }
    if (record.read == nullptr || record.write == nullptr ||
        (record.regions == nullptr && record.regionCount != 0)) {
        return PluginCoreNullRecord;
    }
    record.failedRegion = 0;
    record.hops = 0;
    record.bandEnergy = 0;
    const Turn turn(*this);
    if (!turn.IsMine()) {
        SetResult(record, DSP::OfflineResult::Busy, false);
        return PluginCoreSuccess;
    }
    try {
        Render(record);
    } catch (const std::exception& error) {
        SetResult(record, RenderFailed, error.what());
    }
    return PluginCoreSuccess;
}

// What has ended stays stopped.
void Rendering::ForgetStop()
{
    const Util::CriticalSectionGuard guard(turnLock);
    stopped = hasEnded;
}

Rendering::Start Rendering::TakeStart()
{
    const Util::CriticalSectionGuard guard(setup.uiLock);
    ForgetStop(); // a new format comes under this lock, too
    setup.state.LoadPending();
    const DSP::DSPSet& set = setup.path.GetSet();
    set.GetGlobalElement()->SyncParams(); // the process side may have switched the bypass
    return {setup.format, DSP::BuildElements(set), set.GetBypassParam().GetValue(DSP::Context::UI)};
}

bool Rendering::CheckRegions(RenderRecord& record, float sampleRate) const
{
    const DSP::RegionPlanSetup plan{record.frames, static_cast<double>(sampleRate), 0};
    for (uint32_t index = 0; index < record.regionCount; ++index) {
        const DSP::BoxFault fault = DSP::FindFault(MakeBox(record.regions[index]), plan);
        if (fault != DSP::BoxFault::None) {
            record.failedRegion = index;
            SetResult(record, RenderBadRegion, String(Describe(fault)).arg(index + 1));
            return false;
        }
    }
    return true;
}

void Rendering::Render(RenderRecord& record)
{
    const Start start = TakeStart();
    if (!HasSense(record)) {
        SetResult(record, RenderFailed, "The fade or the length of the recording makes no sense.");
        return;
    }
    if (!CheckRegions(record, start.format.sampleRate)) {
        return;
    }
    if (start.isBypassed || record.regionCount == 0) {
        SetResult(record, DSP::OfflineResult::Done, false);
        return;
    }
    RunElements(record, start);
}

void Rendering::RunElements(RenderRecord& record, const Start& start)
{
    OfflineHost host(MaxBlockFrames);
    const auto path =
        setup.factory.CreateTransform(host, start.format.sampleRate, start.format.channelConfig);
    DSP::ApplyElements(path->GetSet(), DSP::ReadElements(start.values), DSP::SourceHost);
    RenderJob job(record, *path, stopped);
    const Util::CriticalSectionGuard guard(host.GetProcessLock());
    const BlockRunner::Inside inside(host.GetRunner());
    const DSP::OfflineResult result = path->GetSet().GetMainElement()->RunOffline(job);
    job.WriteTotals();
    SetResult(record, result, job.WasStopped());
}
