// SPDX-License-Identifier: ISC
// A new stream format.
#include "frameworks/plugincore/instance/Plugin.h"
#include "frameworks/plugincore/instance/StreamFormat.h"
#include "frameworks/qobase/util/DebugTrace.h"
#include "frameworks/qobase/util/ScopedFlag.h"

#include <exception>
#include <utility>

bool Plugin::IsInSignalPath() const
{
    return blocks.IsCallerInside() || latency.IsReportingThread();
}

void Plugin::SetStreamFormat(float newSampleRate, uint32_t newChannelConfig)
{
    if (!IsServableRate(newSampleRate) || !IsServableLayout(newChannelConfig)) {
        return;
    }
    if (newSampleRate == sampleRate && newChannelConfig == channelConfig) {
        return;
    }
    // A change within a change is not heard, nor is one that a host callback asks for while this
    // thread is still inside the signal path that would be rebuilt.
    if (reconfiguring || IsInSignalPath()) {
        return;
    }
    const Util::ScopedFlag guard(reconfiguring);
    Reconfigure(newSampleRate, newChannelConfig);
}

void Plugin::Reconfigure(float newSampleRate, uint32_t newChannelConfig)
{
    const Util::CriticalSectionGuard processGuard(GetThreadController().GetProcessLock());
    const Util::CriticalSectionGuard uiGuard(GetThreadController().GetUILock());
    const Util::ScopedFlag suspendedGuard(suspended);
    const Util::ScopedFlag switchingGuard(switching);
    blocks.ForgetBlocks();
    const Util::Bytes state = SaveState();
    const float formerRate = sampleRate;
    const uint32_t formerConfig = channelConfig;
    Editor* closedEditor = nullptr;
    std::exception_ptr failure;
    try {
        StorePersistentParams();
        transform->BeforeFormatChange();
        closedEditor = editor.FreeOfElements();
        TakeFormat(newSampleRate, newChannelConfig);
        FollowFormat(state);
    } catch (...) {
        failure = std::current_exception();
        ReturnToFormat(formerRate, formerConfig, state);
    }
    editor.Reopen(closedEditor);
    if (failure) {
        std::rethrow_exception(failure);
    }
}

// The instance stays as it was when it can't have a new format.
void Plugin::ReturnToFormat(float formerRate,
                            uint32_t formerConfig,
                            const Util::Bytes& state) noexcept
{
    try {
        TakeFormat(formerRate, formerConfig);
        FollowFormat(state);
    } catch (...) {
        // The caller is told of the failure that came first.
        Util::DebugTrace("The former stream format could not be taken again");
    }
}

void Plugin::FollowFormat(const Util::Bytes& state)
{
    BuildElementParamList();
    LatencyChanged(DSP::Context::Process);
    LoadPersistentParams();
    RestoreState(state);
    transform->PlanDryDelay();
    transform->Settle();
    transform->AfterFormatChange();
}

Util::Bytes Plugin::SaveState()
{
    Util::Bytes state(GetStateSize());
    if (!GetChunk(state)) {
        state.clear(); // what is made anew then starts with its defaults
    }
    return state;
}

void Plugin::RestoreState(const Util::Bytes& state)
{
    // Elements that live on have kept their values. They are not set again later, by when the host
    // may have changed them.
    if (state.empty() || SaveState() == state) {
        return;
    }
    if (editor.IsPending()) {
        pendingChunks.assign(1, state);
    } else {
        SetChunk(state, GetDefinition().GetVersionNumber(), DSP::SourceHost);
    }
}

void Plugin::TakeFormat(float newSampleRate, uint32_t newChannelConfig)
{
    sampleRate = newSampleRate;
    channelConfig = newChannelConfig;
    transform->SetFormat(sampleRate, channelConfig);
}
