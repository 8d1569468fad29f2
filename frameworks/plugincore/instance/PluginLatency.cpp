// SPDX-License-Identifier: ISC
// The two latencies of an instance, one for each side, and how a change of one reaches the other:
// the side that hears of it first does its own half and leaves a mark for the other half, which is
// done by whichever side comes next. A mark is exchanged, so that only one does it.
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/plugincore/instance/PluginThreadMark.h"

namespace {

DSP::Context Other(DSP::Context context)
{
    return context == DSP::Context::UI ? DSP::Context::Process : DSP::Context::UI;
}

} // namespace

void Plugin::UpdateLatency(DSP::Context context, Notify notify)
{
    uint32_t sum = 0;
    for (const auto& [name, element] : transform->GetSet().GetElements()) {
        if (transform->IsInPath(name, context)) {
            sum += element->GetLatency(context);
        }
    }
    uint32_t reported = frozenSystemDelay.value_or(sum);
    if (!delayCompensationEnabled) {
        reported = 0;
    }
    Latency& latency = GetLatencyOf(context);
    latency.raw = sum;
    if (latency.reported.exchange(reported) != reported && notify == Notify::Yes) {
        GetHostCallback().NotifyLatency(context, reported);
    }
}

void Plugin::CheckLatency(DSP::Context context)
{
    if (GetLatencyOf(context).dirty.exchange(false)) {
        UpdateLatency(context, Notify::Yes);
    }
}

void Plugin::LatencyChanged(DSP::Context context)
{
    if (transform == nullptr) {
        return; // an element under construction; the sum is taken once all are there
    }
    const ThreadMark mark(latencyThread);
    const DSP::Context other = Other(context);
    GetLatencyOf(other).dirty = true;
    UpdateLatency(context, Notify::Yes);
    if (!reconfiguring && IsProcessing()) {
        if (context == DSP::Context::Process) {
            processDirty = true; // the next tick tells the UI side
        }
        return; // the next block tells the process side
    }
    CheckLatency(other);
}

uint32_t Plugin::GetLatency(DSP::Context context) const
{
    const uint32_t reported = latencies[static_cast<size_t>(context)].reported;
    uint32_t hostDelay = 0;
    if (context == DSP::Context::UI &&
        !GetHostCallback().Ask(HostOpcodeGetHostDelay, context, &hostDelay)) {
        hostDelay = 0;
    }
    return reported + hostDelay;
}

uint32_t Plugin::GetProcessingSystemDelaySamples() const
{
    return latencies[static_cast<size_t>(DSP::Context::Process)].reported;
}
