// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/HistoryKeeper.h"
#include "frameworks/plugincore/instance/HostParams.h"

#include <cstdint>
#include <map>

/// The user's gestures in a view of the host's own: the host reports begin and end, and sets values
/// in between. Each becomes a step of the history, if it has changed something. The host knows of
/// all of it, and is notified of nothing.
///
/// Threads: all under the UI lock. [ui]
class HostGestures {
public:
    /// Both outlive this object.
    HostGestures(const HostParams& newParams, HistoryKeeper& newHistory);

    /// The begin or the end of one; a code of PluginCoreResult.
    uint32_t Answer(const ParamEventRecord& event);
    /// Every tick: a value that comes with the audio may come later than the end of its gesture.
    void onIdle();

private:
    struct Gesture {
        float before = 0;       // normalised
        uint32_t ticksLeft = 0; // for the value to come; 0: it's still held
    };
    bool TryFinish(uint32_t index, const Gesture& gesture);

    const HostParams& params;
    HistoryKeeper& history;
    std::map<uint32_t, Gesture> gestures; // by the parameter's index
};
