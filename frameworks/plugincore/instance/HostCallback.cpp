// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/HostCallback.h"

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

void HostCallback::NotifyDirty()
{
    SendOrHold({HostOpcodeDirtyState, DSP::Context::UI, 0, {}});
}

void HostCallback::SendOrHold(const Notification& notification)
{
    if (holdingThread.load() == std::this_thread::get_id()) {
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
    void* data = nullptr;
    if (notification.opcode == HostOpcodeLatencyChanged) {
        data = &samples;
    } else if (notification.opcode == HostOpcodeParamEvent) {
        data = &event;
    }
    Ask(notification.opcode, notification.context, data);
}
