// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/HostCallback.h"

#include <algorithm>
#include <iterator>
#include <utility>

static_assert(static_cast<uint32_t>(DSP::Context::Process) == ContextProcess &&
              static_cast<uint32_t>(DSP::Context::UI) == ContextUI);

HostCallback::HostCallback(PluginCoreHostFunction newFunction, void* newRefcon)
    : function(newFunction)
    , refcon(newRefcon)
{
}

bool HostCallback::Ask(PluginCoreHostOpcode opcode, DSP::Context context, void* data) const
{
    return function != nullptr &&
           function(PLUGIN_CORE_MAGIC, opcode, static_cast<uint32_t>(context), refcon, data) ==
               PluginCoreSuccess;
}

void HostCallback::NotifyLatency(DSP::Context context, uint32_t samples)
{
    SendOrHold({HostOpcodeLatencyChanged, context, samples, {}});
}

void HostCallback::NotifyParam(const ParamEventRecord& event)
{
    SendOrHold({HostOpcodeParamEvent, DSP::Context::UI, 0, event});
}

void HostCallback::NotifyParams(std::span<const ParamEventRecord> events)
{
    AutomationEventRecord record{};
    const bool fits = events.size() > 1 && events.size() <= std::size(record.events);
    // Nothing is asked while notifications are held back.
    if (fits && !IsHolding()) {
        record.count = static_cast<uint32_t>(events.size());
        std::copy(events.begin(), events.end(), record.events);
        if (Ask(HostOpcodeAutomationEvent, DSP::Context::UI, &record) && record.handled != 0) {
            return;
        }
    }
    for (const ParamEventRecord& event : events) {
        NotifyParam(event);
    }
}

void HostCallback::NotifyReload()
{
    SendOrHold({HostOpcodeReloadEditor, DSP::Context::UI, 0, {}});
}

void HostCallback::NotifyReinstantiate()
{
    SendOrHold({HostOpcodeRequestReinstantiate, DSP::Context::Process, 0, {}});
}

void HostCallback::NotifyDirty()
{
    SendOrHold({HostOpcodeDirtyState, DSP::Context::UI, 0, {}});
}

void HostCallback::SendOrHold(const Notification& notification)
{
    if (IsHolding()) {
        held.push_back(notification);
    } else {
        Send(notification);
    }
}

std::vector<HostCallback::Notification> HostCallback::TakeHeld()
{
    holdingThread.store(std::thread::id());
    return std::exchange(held, {});
}

void HostCallback::Send(const Notification& notification) const
{
    // The host gets copies: its callback may write into the record.
    uint32_t samples = notification.latency;
    ParamEventRecord event = notification.event;
    ReinstantiateRecord nothing{};
    void* data = nullptr;
    if (notification.opcode == HostOpcodeLatencyChanged) {
        data = &samples;
    } else if (notification.opcode == HostOpcodeParamEvent) {
        data = &event;
    } else if (notification.opcode == HostOpcodeRequestReinstantiate) {
        data = &nothing;
    }
    Ask(notification.opcode, notification.context, data);
}
