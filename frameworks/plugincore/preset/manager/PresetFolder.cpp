// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/manager/PresetFolder.h"

#include "frameworks/qobase/util/Path.h"
#include "frameworks/qobase/util/PlatformFile.h"

#include <utility>

namespace Preset {
namespace {

constexpr const char* FolderKey = "PresetFolder";

String WithSeparator(const String& folder)
{
    return Util::Path::Join(folder, "");
}

Util::Expected<void> Make(const String& folder)
{
    return Util::Path::MakeDirectory(folder, Util::Path::Recursive::Yes);
}

// May make the folder.
bool IsUsable(const String& folder)
{
    return !folder.IsEmpty() && Make(folder) && Util::Platform::CheckWritable(folder) == 0;
}

} // namespace

PresetFolder::PresetFolder(Util::ConfigFile& newSettings, const String& newDefaultFolder)
    : settings(newSettings)
    , defaultFolder(WithSeparator(newDefaultFolder))
{
}

String PresetFolder::Get() const
{
    const String chosen = settings.ReadString(FolderKey, "");
    return IsUsable(chosen) ? WithSeparator(chosen) : defaultFolder;
}

void PresetFolder::Set(const String& path)
{
    settings.WriteString(FolderKey, path);
}

Util::Expected<String> PresetFolder::Prepare() const
{
    const String folder = Get();
    if (folder == defaultFolder) {
        if (auto made = Make(folder); !made) {
            return made.GetError();
        }
    }
    return folder;
}

} // namespace Preset
