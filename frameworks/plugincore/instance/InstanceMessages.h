// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/instance/HistoryMessages.h"
#include "frameworks/plugincore/instance/HostGestures.h"
#include "frameworks/plugincore/instance/PresetMessages.h"

/// What a host sends an instance by messages: presets, the undo history, gestures in its own view.
///
/// Threads: all under the UI lock. [ui]
class InstanceMessages {
public:
    /// What is referred to outlives the messages.
    InstanceMessages(PresetMessages::Setup presetSetup,
                     HistoryMessages::Setup historySetup,
                     const HostParams& params);

    /// By a code of PluginCoreResult. Another context than that of the UI side, an unknown message
    /// and a record that isn't whole are not supported.
    uint32_t Answer(DSP::Context context, const HostMessageRecord& message);
    /// Every tick.
    void onIdle() { hostGestures.onIdle(); }

private:
    HostGestures hostGestures;
    PresetMessages presets;
    HistoryMessages history;
};
