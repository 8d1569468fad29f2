// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/controller/PersistentParamsLink.h"
#include "frameworks/plugincore/dsp/path/DSPSet.h"

#include <optional>
#include <set>
#include <utility>

/// The elements' persistent parameters, tied to the user's preferences; an offline instance has no
/// such tie.
///
/// Threads: all under the UI lock. [ui]
class Preferences {
public:
    /// Preferences stand in `newFile`. Both outlive this object.
    Preferences(DSP::DSPSet& newSet, Util::ConfigFile& newFile, bool isOffline);

    /// Takes the preferences over, and follows them from now on. After the elements are made.
    void Load();
    /// Lets go of the elements, with what the process side alone knew stored. Before they go.
    void Store();
    /// Takes over what others have changed; every tick.
    void ApplyChanges();
    /// A control holds the parameter, and lets it go: a preference that is dragged is written once,
    /// at the end of the last hold.
    void Grabbed(const DSP::Element& element, const String& name);
    void Released(const DSP::Element& element, const String& name);

private:
    using Key = std::pair<const DSP::Element*, String>;

    DSP::DSPSet& set;
    Util::ConfigFile& file;
    std::optional<Controller::PersistentParamsLink> link; // empty offline
    std::multiset<Key> held;                              // those that are preferences
    std::optional<Util::ConfigFile::Collection> writes;   // while any is held
};
