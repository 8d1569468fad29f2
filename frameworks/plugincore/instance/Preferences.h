// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/PersistentParamsLink.h"
#include "frameworks/plugincore/dsp/path/DSPSet.h"

#include <optional>

/// The elements' persistent parameters, tied to the user's preferences; an offline instance has no
/// such tie.
///
/// Threads: all under the UI lock. [ui]
class Preferences {
public:
    /// Preferences stand in the settings of `keyPath`. `newSet` outlives this object.
    Preferences(DSP::DSPSet& newSet, const String& keyPath, bool isOffline);

    /// Takes the preferences over, and follows them from now on. After the elements are made.
    void Load();
    /// Lets go of the elements, with what the process side alone knew stored. Before they go.
    void Store();
    /// Takes over what other instances have changed; every tick.
    void ApplyChanges();

private:
    DSP::DSPSet& set;
    std::optional<Controller::PersistentParamsLink> link; // empty offline
};
