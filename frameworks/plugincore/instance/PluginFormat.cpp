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
    const Util::Bytes saved = state.Save();
    const float formerRate = sampleRate;
    const uint32_t formerConfig = channelConfig;
    Editor* closedEditor = nullptr;
    std::exception_ptr failure;
    try {
        preferences.Store();
        transform->BeforeFormatChange();
        closedEditor = editor.FreeOfElements();
        TakeFormat(newSampleRate, newChannelConfig);
        FollowFormat(saved);
    } catch (...) {
        failure = std::current_exception();
        ReturnToFormat(formerRate, formerConfig, saved);
    }
    editor.Reopen(closedEditor);
    if (failure) {
        std::rethrow_exception(failure);
    }
}

// The instance stays as it was when it can't have a new format.
void Plugin::ReturnToFormat(float formerRate,
                            uint32_t formerConfig,
                            const Util::Bytes& saved) noexcept
{
    try {
        TakeFormat(formerRate, formerConfig);
        FollowFormat(saved);
    } catch (...) {
        // The caller is told of the failure that came first.
        Util::DebugTrace("The former stream format could not be taken again");
    }
}

void Plugin::FollowFormat(const Util::Bytes& saved)
{
    params.Rebuild();
    LatencyChanged(DSP::Context::Process);
    preferences.Load();
    state.Restore(saved);
    transform->PlanDryDelay();
    transform->Settle();
    transform->AfterFormatChange();
}

void Plugin::TakeFormat(float newSampleRate, uint32_t newChannelConfig)
{
    sampleRate = newSampleRate;
    channelConfig = newChannelConfig;
    transform->SetFormat(sampleRate, channelConfig);
}
