// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/HostCallback.h"
#include "frameworks/plugincore/instance/HostIdentification.h"

#include <atomic>
#include <cstdint>

/// What an instance knows of the host that it runs in.
class HostFacts {
public:
    /// The host that this process is. [setup]
    HostFacts();

    uint32_t GetNumber() const { return identity.number; }

    /// Asks where the editor is to be placed; what was known stays when the host refuses. [setup]
    void AskWindowHint(const HostCallback& host);
    /// The host's number of the track that the instance is on. [any]
    void SetTrackValue(uint64_t value);

private:
    const HostIdentity identity;
    WindowHintRecord windowHint{};
    std::atomic<uint64_t> trackValue{0};
    std::atomic<bool> hasTrackValue{false};
};
