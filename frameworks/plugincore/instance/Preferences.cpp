// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/Preferences.h"

Preferences::Preferences(DSP::DSPSet& newSet, Util::ConfigFile& newFile, bool isOffline)
    : set(newSet)
    , file(newFile)
{
    if (!isOffline) {
        link.emplace(Controller::PersistentParamsHolder::Share(file.GetKeyPath()));
    }
}

void Preferences::Load()
{
    if (link) {
        for (const auto& [name, element] : set.GetElements()) {
            link->Load(*element);
        }
    }
}

void Preferences::Store()
{
    if (link) {
        // What isn't stored yet is what the process side alone knows, and what is held.
        set.OnSyncParams();
        link->Clear();
        held.clear();
        writes.reset();
    }
}

void Preferences::ApplyChanges()
{
    if (link) {
        link->ApplyChanges();
    }
}

void Preferences::Grabbed(const DSP::Element& element, const String& name)
{
    const bool isPreference =
        element.GetParamInfoByName(name).persistence == DSP::Persistence::Persistent;
    if (!link || !isPreference) {
        return;
    }
    held.insert({&element, name});
    if (!writes) {
        writes.emplace(file);
    }
}

void Preferences::Released(const DSP::Element& element, const String& name)
{
    const auto found = held.find({&element, name});
    if (found == held.end()) {
        return;
    }
    held.erase(found);
    if (held.empty()) {
        writes.reset();
    }
}
