// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/ConfigFile.h"
#include "frameworks/qobase/util/Expected.h"

namespace Preset {

/// Where the user's presets are: the folder that the settings name, or else the default. [ui]
class PresetFolder {
public:
    /// The settings outlive the object.
    PresetFolder(Util::ConfigFile& newSettings, String newDefaultFolder);

    /// Ends in a separator. Looking makes no folder; one that can't be made, since a file is in its
    /// way, is passed over for the default.
    String Get() const;
    void Set(const String& path);
    /// The folder, made when it is missing; the default when it can't be made. Ends in a separator.
    Util::Expected<String> Prepare() const;

private:
    Util::ConfigFile& settings;
    const String defaultFolder;
};

} // namespace Preset
