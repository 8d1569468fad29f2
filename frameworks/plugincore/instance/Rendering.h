// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/plugincore/instance/PluginFactory.h"
#include "frameworks/plugincore/instance/StateKeeper.h"
#include "frameworks/plugincore/instance/StreamFormat.h"
#include "frameworks/qobase/util/CriticalSection.h"
#include "frameworks/qobase/util/Dictionary.h"

#include <atomic>
#include <condition_variable>

/// Renders regions of a host's recordings, on elements made for it: PLUGIN_CORE_MESSAGE_RENDER.
///
/// Threads: Answer() comes on a thread of the host's own, without a lock of the instance; it takes
/// the UI lock for as long as it copies the instance's values, and no other. The rest is [any].
class Rendering {
public:
    /// All that is referred to outlives this.
    struct Setup {
        const PluginFactory& factory;
        DSP::TransformBase& path;
        const StreamFormat& format;
        StateKeeper& state;
        Util::CriticalSection& uiLock;
    };
    explicit Rendering(const Setup& newSetup);

    /// Does what the record asks for, and answers in it. A code of PluginCoreResult.
    uint32_t Answer(RenderRecord& record);

    /// What is under way ends at its next block. Under the UI lock.
    void Stop() { stopped = true; }
    /// The same, and waits for it; nothing can begin any more. Without a lock.
    void End();

private:
    class Turn;

    /// The instance as it is when a rendering begins.
    struct Start {
        StreamFormat format{};
        Util::Dictionary values;
        bool isBypassed = false;
    };

    void ForgetStop();
    Start TakeStart();
    bool CheckRegions(RenderRecord& record, float sampleRate) const;
    void Render(RenderRecord& record);
    void RunElements(RenderRecord& record, const Start& start);

    const Setup setup;
    std::atomic<bool> stopped{false};
    Util::CriticalSection turnLock{"Rendering Turn"};
    std::condition_variable_any turnEnded;
    bool isTaken UTIL_GUARDED_BY(turnLock) = false;
    bool hasEnded UTIL_GUARDED_BY(turnLock) = false;
};
