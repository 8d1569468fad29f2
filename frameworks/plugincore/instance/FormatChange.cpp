// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/FormatChange.h"

#include "frameworks/qobase/util/DebugTrace.h"

#include <exception>

void FormatChange::Run(const StreamFormat& wanted)
{
    const Util::Bytes saved = parts.state.Save();
    const StreamFormat former = parts.format;
    Editor* closedEditor = nullptr;
    std::exception_ptr failure;
    try {
        parts.preferences.Store();
        parts.path.BeforeFormatChange();
        closedEditor = parts.editor.FreeOfElements();
        Take(wanted);
        Follow(saved);
    } catch (...) {
        failure = std::current_exception();
        ReturnTo(former, saved);
    }
    parts.editor.Reopen(closedEditor);
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void FormatChange::ReturnTo(const StreamFormat& former, const Util::Bytes& saved) noexcept
{
    try {
        Take(former);
        Follow(saved);
    } catch (...) {
        // The caller gets the failure that came first.
        Util::DebugTrace("The former stream format could not be taken again");
    }
}

void FormatChange::Take(const StreamFormat& format)
{
    parts.format = format;
    parts.path.SetFormat(format.sampleRate, format.channelConfig);
}

void FormatChange::Follow(const Util::Bytes& saved)
{
    parts.params.Rebuild();
    parts.latency.onElementChanged(DSP::Context::Process);
    parts.preferences.Load();
    parts.state.Restore(saved);
    parts.path.PlanDryDelay();
    parts.path.Settle();
    parts.path.AfterFormatChange();
}
