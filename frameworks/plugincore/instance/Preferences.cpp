// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/Preferences.h"

Preferences::Preferences(DSP::DSPSet& newSet, const String& keyPath, bool isOffline)
    : set(newSet)
{
    if (!isOffline) {
        link.emplace(Controller::PersistentParamsHolder::Share(keyPath));
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
        // Every change is stored at once; what is left is what the process side alone knows.
        set.OnSyncParams();
        link->Clear();
    }
}

void Preferences::ApplyChanges()
{
    if (link) {
        link->ApplyChanges();
    }
}
