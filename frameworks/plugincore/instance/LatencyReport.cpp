// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/LatencyReport.h"

#include "frameworks/plugincore/instance/ThreadMark.h"

namespace {

DSP::Context Other(DSP::Context context)
{
    return context == DSP::Context::UI ? DSP::Context::Process : DSP::Context::UI;
}

} // namespace

LatencyReport::LatencyReport(const Settings& newSettings,
                             DSP::ElementHost& newHost,
                             HostCallback& newCallback)
    : settings(newSettings)
    , host(newHost)
    , callback(newCallback)
{
}

uint32_t LatencyReport::SumElements(DSP::Context context) const
{
    uint32_t sum = 0;
    for (const auto& [name, element] : path->GetSet().GetElements()) {
        if (path->IsInPath(name, context)) {
            sum += element->GetLatency(context);
        }
    }
    return sum;
}

void LatencyReport::Update(DSP::Context context, Notify notify)
{
    const uint32_t sum = SumElements(context);
    const uint32_t reported = settings.isCompensated ? settings.frozen.value_or(sum) : 0;
    Side& side = GetSide(context);
    side.sum = sum;
    if (side.reported.exchange(reported) != reported && notify == Notify::Yes) {
        callback.NotifyLatency(context, reported);
    }
}

void LatencyReport::Check(DSP::Context context)
{
    if (GetSide(context).dirty.exchange(false)) {
        Update(context, Notify::Yes);
    }
}

void LatencyReport::onElementChanged(DSP::Context context)
{
    if (path == nullptr) {
        return;
    }
    const ThreadMark mark(thread, host.GetProcessLock());
    const DSP::Context other = Other(context);
    GetSide(other).dirty = true;
    Update(context, Notify::Yes);
    if (!host.IsReconfiguring() && host.IsProcessing()) {
        if (context == DSP::Context::Process) {
            host.MarkProcessDirty(); // the next tick reports to the UI side
        }
        return; // the next block reports to the process side
    }
    Check(other);
}

uint32_t LatencyReport::GetWithHostDelay(DSP::Context context) const
{
    uint32_t hostDelay = 0;
    if (context == DSP::Context::UI && !callback.Ask(HostOpcodeGetHostDelay, context, &hostDelay)) {
        hostDelay = 0;
    }
    return GetReported(context) + hostDelay;
}
