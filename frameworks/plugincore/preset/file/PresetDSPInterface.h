// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/preset/file/Snapshot.h"
#include "frameworks/qobase/util/Expected.h"

namespace Preset {

/// What presets know of the elements that they set. Only parameters that sessions save take part.
/// [ui]
class PresetDSPInterfaceBase {
public:
    PresetDSPInterfaceBase() = default;
    PresetDSPInterfaceBase(const PresetDSPInterfaceBase&) = delete;
    PresetDSPInterfaceBase& operator=(const PresetDSPInterfaceBase&) = delete;
    virtual ~PresetDSPInterfaceBase() = default;

    /// The values of now, a change that is still on its way to the process side included.
    virtual Snapshot TakeSnapshot() = 0;
    /// The same with every parameter at its default.
    virtual Snapshot TakeDefaults() = 0;
    /// Sets the elements' values, clamped to their ranges. A failure when the snapshot holds a
    /// parameter that the elements don't have, or have as another type; then nothing is set.
    virtual Util::Expected<void> Apply(const Snapshot& snapshot) = 0;
    /// Of the element as it is now; empty for an unknown one.
    virtual Util::Bytes GetExtraBytes(const String& element) = 0;
};

} // namespace Preset
