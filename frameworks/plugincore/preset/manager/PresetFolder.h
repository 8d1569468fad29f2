// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/ConfigFile.h"
#include "frameworks/qobase/util/Expected.h"

namespace Preset {

/// Where the user's presets are: the folder that the settings name, or else the default. [ui]
class PresetFolder {
public:
    /// The settings outlive the object.
    PresetFolder(Util::ConfigFile& newSettings, const String& newDefaultFolder);

    /// The one folder that is listed and written; ends in a separator. A chosen one that is missing
    /// is made: whether that works is known no other way, and what is listed would else be another
    /// folder than the next save goes to. One that can't be made, or that this user may not write,
    /// is passed over for the default, which is not made here.
    String Get() const;
    void Set(const String& path);
    /// The same folder, the default made when it is missing.
    Util::Expected<String> Prepare() const;

private:
    Util::ConfigFile& settings;
    const String defaultFolder;
};

} // namespace Preset
