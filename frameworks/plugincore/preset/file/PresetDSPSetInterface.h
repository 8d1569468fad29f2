// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/path/DSPSet.h"
#include "frameworks/plugincore/preset/file/PresetDSPInterface.h"

namespace Preset {

/// The elements of a set. Values are set as a control of the user interface would, so that the
/// plug-in host is notified of them. [ui]
class PresetDSPSetInterface final : public PresetDSPInterfaceBase {
public:
    /// The set outlives the interface.
    explicit PresetDSPSetInterface(DSP::DSPSetBase& newSet)
        : set(newSet)
    {
    }

    Snapshot TakeSnapshot() override;
    Snapshot TakeDefaults() override;
    Util::Expected<void> Apply(const Snapshot& snapshot) override;
    Util::Bytes GetExtraBytes(const String& element) override;

private:
    DSP::DSPSetBase& set;
};

} // namespace Preset
