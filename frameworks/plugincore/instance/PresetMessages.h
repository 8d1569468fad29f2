// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/entry/PluginCoreCallback.h"
#include "frameworks/plugincore/instance/GestureReport.h"
#include "frameworks/plugincore/instance/StateKeeper.h"
#include "frameworks/plugincore/product/PluginDefinition.h"
#include "frameworks/qobase/util/ConfigFile.h"

#include <functional>
#include <memory>

namespace Preset {
class PresetManager;
}

/// The presets of an instance as the host asks for them, by messages. The manager is made at the
/// first of them.
///
/// Threads: all under the UI lock. [ui]
class PresetMessages {
public:
    /// All that is referred to outlives the messages.
    struct Setup {
        const PluginDefinition& product;
        String modulePath; ///< empty when the wrapper gives none
        Util::ConfigFile& settings;
        bool keepsSettings; ///< false: settings are looked at, never changed
        DSP::DSPSet& set;
        StateKeeper& state;
        GestureReport& gestures;
        std::function<void()> onApplied; ///< a preset has been applied
    };
    explicit PresetMessages(Setup newSetup);
    PresetMessages(const PresetMessages&) = delete;
    PresetMessages& operator=(const PresetMessages&) = delete;
    ~PresetMessages();

    /// Does what a record asks for, and answers in it, by a code of PluginCoreResult when the
    /// product has no presets or the request is none.
    uint32_t Answer(PresetRecord& record);

private:
    bool MakeManager();

    const Setup setup;
    std::unique_ptr<Preset::PresetManager> manager;
};
