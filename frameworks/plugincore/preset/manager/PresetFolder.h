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
    /// folder than the next save goes to. One that can't be made is passed over for the default,
    /// which is not made here. One that is there but can't be written is listed all the same, such
    /// as a share that a team may only read.
    String Get() const;
    /// What the settings name, and what isn't used since it would be another folder for each host;
    /// empty when there is no such thing.
    String GetRefused() const;
    /// "~" and "%USERDOCS%" at the start stand for the user's folders. Refuses what is relative.
    Util::Expected<void> Set(const String& path);
    /// The same folder as Get(), made when it is missing; a failure when it can't be written.
    Util::Expected<String> Prepare() const;

private:
    String GetChosen() const;

    Util::ConfigFile& settings;
    const String defaultFolder;
};

} // namespace Preset
