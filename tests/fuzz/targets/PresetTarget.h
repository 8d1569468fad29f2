// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/preset/file/LmPresetFile.h"

namespace Fuzz {

/// Elements with a parameter of each type, which keep what they are given.
class FixedElements final : public Preset::PresetDSPInterfaceBase {
public:
    Preset::Snapshot TakeSnapshot() override
    {
        Preset::ElementSnapshot element;
        element.params[{"Puffguard", "Float"}] = Preset::FloatRecord{.value = 5, .range = {0, 10}};
        element.params[{"Puffguard", "Enum"}] = Preset::EnumRecord{.value = 1, .range = {0, 3}};
        element.params[{"Puffguard", "Bool"}] = Preset::BoolRecord{.value = true};
        element.extraBytes = {1, 2, 3};
        Preset::Snapshot snapshot;
        snapshot.elements["Puffguard"] = element;
        snapshot.elements["Global"] = {};
        return snapshot;
    }
    Preset::Snapshot TakeDefaults() override { return TakeSnapshot(); }
    Util::Expected<void> Apply(const Preset::Snapshot& /*snapshot*/) override { return {}; }
    Util::Bytes GetExtraBytes(const String& /*element*/) override { return {}; }
};

inline Preset::ProgramIdentity GetIdentity()
{
    return {"Type", 1, 6000, 1};
}

} // namespace Fuzz
