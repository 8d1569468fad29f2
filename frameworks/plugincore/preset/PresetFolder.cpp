// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/PresetFolder.h"

#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/Path.h"

#include <utility>

namespace Preset {
namespace {

constexpr const char* FolderKey = "PresetFolder";

String WithSeparator(const String& folder)
{
    return Util::Path::Join(folder, "");
}

// Whether the nearest thing above the path that exists is a folder.
bool MayBecomeFolder(String path)
{
    while (!path.IsEmpty() && !Util::Path::IsDirectory(path)) {
        if (Util::File(path).Exists()) {
            return false;
        }
        path = Util::Path::GetFolder(path);
    }
    return true;
}

Util::Expected<void> Make(const String& folder)
{
    return Util::Path::MakeDirectory(folder, Util::Path::Recursive::Yes);
}

} // namespace

PresetFolder::PresetFolder(Util::ConfigFile& newSettings, String newDefaultFolder)
    : settings(newSettings)
    , defaultFolder(WithSeparator(newDefaultFolder))
{
}

String PresetFolder::Get() const
{
    const String chosen = settings.ReadString(FolderKey, "");
    const bool isUsable = !chosen.IsEmpty() && MayBecomeFolder(chosen);
    return isUsable ? WithSeparator(chosen) : defaultFolder;
}

void PresetFolder::Set(const String& path)
{
    settings.WriteString(FolderKey, path);
}

Util::Expected<String> PresetFolder::Prepare() const
{
    const String folder = Get();
    if (Make(folder)) {
        return folder;
    }
    if (auto made = Make(defaultFolder); !made) {
        return made.GetError();
    }
    return defaultFolder;
}

} // namespace Preset
