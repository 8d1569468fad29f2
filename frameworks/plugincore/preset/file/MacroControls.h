// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/preset/file/Snapshot.h"
#include "frameworks/qobase/util/XmlDocument.h"

#include <vector>

namespace Preset {

/// Puts the macro controls of a preset's root in place of what is there. Without a list in the
/// file, and after a failure, everything is as it was. [ui]
Util::Expected<void> ReadSliders(const Util::XmlNode& root, std::vector<SliderRecord>& sliders);
Util::Expected<void> ReadCheckBoxes(const Util::XmlNode& root,
                                    std::vector<CheckBoxRecord>& checkBoxes);

/// How a parameter is bound to a macro control, by the attributes of its "Param" element. One that
/// is missing or makes no sense counts as none. [ui]
void ReadBinding(const Util::XmlNode& node, ParamRecord& record);
/// Fills each control's list of parameters from what these are bound to. [ui]
void ListBoundParams(Snapshot& snapshot);

} // namespace Preset
