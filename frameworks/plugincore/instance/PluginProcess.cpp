// SPDX-License-Identifier: ISC
// The process calls of an instance, and what restarts its signal path without a new format.
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
    const BlockRunner::Inside inside(blocks);
    blocks.Run(*transform, record);
    latency.Check(DSP::Context::Process);
}

void Plugin::ProcessSidePass(const SidePassRecord& record)
{
    const BlockRunner::Inside inside(blocks);
    blocks.RunSidePass(*transform, record);
}

uint64_t Plugin::GetProcessPosition() const
{
    return transform->GetSamplesProcessed() + blocks.GetBlockOffset();
}

uint32_t Plugin::ResetProcessing(DSP::Context context)
{
    {
        const BlockRunner::Inside inside(blocks);
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
    const BlockRunner::Inside inside(blocks);
    transform->Reset();
}

void Plugin::onSettle()
{
    const BlockRunner::Inside inside(blocks);
    transform->Settle();
}

void Plugin::SetProcessingState(DSP::Context context, bool active, bool hold)
{
    if (active && !hold) {
        if (context == DSP::Context::Process) {
            onSettle();
        } else {
            const Util::CriticalSectionGuard guard(GetThreadController().GetProcessLock());
            const Util::ScopedFlag suspendedGuard(suspended);
            onSettle();
        }
    } else if (!active && !hold) {
        blocks.ForgetBlocks();
    }
    transform->ProcessingStateChanged(context, active);
}
