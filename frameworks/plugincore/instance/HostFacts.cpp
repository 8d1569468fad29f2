// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/HostFacts.h"

#include "frameworks/qobase/util/Process.h"

HostFacts::HostFacts()
    : identity(IdentifyHost(Util::GetExecutablePath()))
{
}

void HostFacts::AskWindowHint(const HostCallback& host)
{
    WindowHintRecord hint{};
    if (host.Ask(HostOpcodeGetWindowHint, DSP::Context::Process, &hint)) {
        windowHint = hint;
    }
}

void HostFacts::SetTrackValue(uint64_t value)
{
    trackValue = value;
    hasTrackValue = true;
}
