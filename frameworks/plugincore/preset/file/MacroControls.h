// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/preset/file/Snapshot.h"
#include "frameworks/qobase/util/XmlDocument.h"

#include <vector>

namespace Preset {

/// Puts the macro controls of a preset's root in place of what is there; a control that was there
/// under the same id hands on the list of its parameters. Without a list in the file, and after a
/// failure, everything is as it was. [ui]
Util::Expected<void> ReadSliders(const Util::XmlNode& root, std::vector<SliderRecord>& sliders);
Util::Expected<void> ReadCheckBoxes(const Util::XmlNode& root,
                                    std::vector<CheckBoxRecord>& checkBoxes);

} // namespace Preset
