// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/PluginElementHost.h"

/// The process lock of an OfflineHost: made before it, since its elements ask for it.
struct OfflineLock {
    Util::CriticalSection lock{"Offline Processing CritSec"};
};

/// What elements ask that work offline, beside those of the instance: they have a lock, memory and
/// transforms of their own, so that the audio thread never waits for them, and nobody is notified
/// of what they do.
///
/// Threads: one, from begin to end.
class OfflineHost final : private OfflineLock, public PluginElementHost {
public:
    explicit OfflineHost(uint32_t maxBlockFrames)
        : PluginElementHost({OfflineLock::lock, maxBlockFrames, true})
    {
    }

    /// For what runs as the process side.
    BlockRunner& GetRunner() { return GetBlocks(); }

    uint64_t GetProcessPosition() const override { return GetBlocks().GetBlockOffset(); }
    void LatencyChanged(DSP::Context /*context*/) override {}
    uint32_t GetProcessingSystemDelaySamples() const override { return 0; }
    bool HasNativeWindow() const override { return false; }
    void ParamGrabbed(DSP::Element& /*element*/, const String& /*name*/) override {}
    void ParamReleased(DSP::Element& /*element*/, const String& /*name*/) override {}
    void ParamChanged(DSP::Element& /*element*/, const String& /*name*/) override {}
};
