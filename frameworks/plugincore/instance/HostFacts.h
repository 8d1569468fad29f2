// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/HostCallback.h"
#include "frameworks/plugincore/instance/HostIdentification.h"

#include <atomic>
#include <cstdint>
#include <optional>

/// What an instance knows of the host that it runs in.
class HostFacts {
public:
    /// The host that this process is. [setup]
    HostFacts();

    uint32_t GetNumber() const { return identity.number; }

    /// Asks where the editor is to be placed, and once for the host's own name and version; what
    /// was known stays when the host refuses. [setup]
    void Ask(const HostCallback& host);
    /// As the host has it, or else as its program is known. [ui]
    const String& GetName() const { return name; }
    /// Empty when the host has none to give. [ui]
    std::optional<float> GetVersion() const { return version; }
    /// The host's number of the track that the instance is on. [any]
    void SetTrackValue(uint64_t value);

private:
    void AskWindowHint(const HostCallback& host);
    void AskName(const HostCallback& host);

    const HostIdentity identity;
    bool hasAskedName = false;
    String name;
    std::optional<float> version;
    WindowHintRecord windowHint{};
    std::atomic<uint64_t> trackValue{0};
    std::atomic<bool> hasTrackValue{false};
};
