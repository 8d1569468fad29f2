// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/HostFacts.h"

#include "frameworks/qobase/util/Process.h"

#include <cmath>
#include <string_view>
#include <utility>

namespace {

constexpr uint32_t LongestName = 1024; // bytes; what is longer is no name

} // namespace

HostFacts::HostFacts()
    : identity(IdentifyHost(Util::GetExecutablePath()))
    , name(identity.name)
{
}

void HostFacts::Ask(const HostCallback& host)
{
    AskWindowHint(host);
    if (!std::exchange(hasAskedName, true)) {
        AskName(host);
    }
}

void HostFacts::AskName(const HostCallback& host)
{
    HostInfoRecord info{};
    if (!host.Ask(HostOpcodeGetHostInfo, DSP::Context::UI, &info)) {
        return;
    }
    if (info.name != nullptr && info.length > 0 && info.length <= LongestName) {
        name = String(std::string_view(info.name, info.length));
    }
    if (std::isfinite(info.version) && info.version != 0) {
        version = info.version;
    }
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
