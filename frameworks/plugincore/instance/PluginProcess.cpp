// SPDX-License-Identifier: ISC
// The process calls of an instance, and what restarts its signal path.
#include "frameworks/plugincore/instance/FormatChange.h"
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/qobase/util/ScopedFlag.h"

void Plugin::beforeProcess(uint32_t eventCount, const uint8_t* events)
{
    transform->BeforeProcess(eventCount, events);
}

void Plugin::afterProcess()
{
    transform->AfterProcess();
}

void Plugin::process(const ProcessRecord& record)
{
    const BlockRunner::Inside inside(GetBlocks());
    GetBlocks().Run(*transform, record);
    latency.Check(DSP::Context::Process);
}

void Plugin::ProcessSidePass(const SidePassRecord& record)
{
    const BlockRunner::Inside inside(GetBlocks());
    GetBlocks().RunSidePass(*transform, record);
}

void Plugin::TransformQuery(uint32_t& value)
{
    // Else the answer would be that of the last block. The UI side doesn't wait for the lock, which
    // the process side holds already.
    Util::CriticalSection& lock = GetThreadController().GetProcessLock();
    if (value == TransformQueryBypass && lock.TryEnter()) {
        const Util::CriticalSectionGuard guard(lock, std::adopt_lock);
        const BlockRunner::Inside inside(GetBlocks());
        BlockRunner::RunCommands(*transform);
    }
    transform->Query(value);
}

uint64_t Plugin::GetProcessPosition() const
{
    return transform->GetSamplesProcessed() + GetBlocks().GetBlockOffset();
}

uint32_t Plugin::ResetProcessing(DSP::Context context)
{
    {
        const BlockRunner::Inside inside(GetBlocks());
        BlockRunner::RunCommands(*transform);
    }
    // Also the dry lines, so that bypass and repair go on from the same silence.
    onSettle();
    latency.Update(DSP::Context::Process, LatencyReport::Notify::No);
    latency.Update(DSP::Context::UI, LatencyReport::Notify::Yes);
    return GetLatency(context);
}

void Plugin::TransformReset()
{
    const BlockRunner::Inside inside(GetBlocks());
    transform->Reset();
}

void Plugin::onSettle()
{
    const BlockRunner::Inside inside(GetBlocks());
    transform->Settle();
}

void Plugin::SetProcessingState(DSP::Context context, bool active, bool hold)
{
    if (active && !hold) {
        if (context == DSP::Context::Process) {
            onSettle();
        } else {
            const Util::CriticalSectionGuard guard(GetThreadController().GetProcessLock());
            const Util::ScopedFlag suspendedGuard(GetPhase().suspended);
            onSettle();
        }
    } else if (!active && !hold) {
        GetBlocks().ForgetBlocks();
    }
    transform->ProcessingStateChanged(context, active);
}

uint32_t Plugin::GetLatency(DSP::Context context) const
{
    return latency.GetWithHostDelay(context);
}

uint32_t Plugin::GetProcessingSystemDelaySamples() const
{
    return latency.GetReported(DSP::Context::Process);
}

bool Plugin::IsInSignalPath() const
{
    return !IsUIThread() || latency.IsReportingThread();
}

void Plugin::SetStreamFormat(float newSampleRate, uint32_t newChannelConfig)
{
    const StreamFormat wanted{newSampleRate, newChannelConfig};
    if (!(wanted == format)) {
        Reconfigure(wanted);
    }
}

void Plugin::ForceReconfigure(float newSampleRate, uint32_t newChannelConfig)
{
    Reconfigure({newSampleRate, newChannelConfig});
}

void Plugin::Reconfigure(const StreamFormat& wanted)
{
    if (!wanted.IsServable()) {
        return;
    }
    // A change within a change is ignored, and so is one that a host callback asks for while this
    // thread is still inside the signal path that would be rebuilt.
    if (IsReconfiguring() || IsInSignalPath()) {
        return;
    }
    const Util::ScopedFlag reconfiguring(GetPhase().reconfiguring);
    const Util::CriticalSectionGuard processGuard(GetThreadController().GetProcessLock());
    const Util::CriticalSectionGuard uiGuard(GetThreadController().GetUILock());
    const Util::ScopedFlag suspended(GetPhase().suspended);
    const Util::ScopedFlag switching(GetPhase().switching);
    GetBlocks().ForgetBlocks();
    rendering.Stop(); // the host's recording is of the former format
    FormatChange({format, *transform, latency, params, preferences, editor, state}).Run(wanted);
}
