// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/preset/manager/PresetFolder.h"

#include "frameworks/plugincore/preset/manager/PresetTexts.h"
#include "frameworks/qobase/util/File.h"
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

// No path at all chooses none.
Util::Expected<void> CheckPath(const String& path)
{
    if (path.IsEmpty() || Util::Path::IsAbsolute(Util::Path::ExpandUserFolders(path))) {
        return {};
    }
    return ManagerError(Texts::FolderRefused(path));
}

} // namespace

PresetFolder::PresetFolder(Util::ConfigFile& newSettings, const String& newDefaultFolder)
    : settings(newSettings)
    , defaultFolder(WithSeparator(newDefaultFolder))
{
}

String PresetFolder::Get() const
{
    const String chosen = Util::Path::ExpandUserFolders(GetChosen());
    return Util::Path::IsAbsolute(chosen) && Make(chosen) ? WithSeparator(chosen) : defaultFolder;
}

String PresetFolder::GetChosen() const
{
    return settings.ReadString(FolderKey, "");
}

String PresetFolder::GetRefused() const
{
    const String chosen = GetChosen();
    return CheckPath(chosen) ? String("") : chosen;
}

Util::Expected<void> PresetFolder::Set(const String& path)
{
    auto checked = CheckPath(path);
    if (checked) {
        settings.WriteString(FolderKey, path);
    }
    return checked;
}

Util::Expected<String> PresetFolder::Prepare() const
{
    const String folder = Get();
    if (auto made = Make(folder); !made) {
        return made.GetError();
    }
    if (const int error = Util::Platform::CheckWritable(folder); error != 0) {
        return Util::File::MakeError(Texts::FolderNotWritable(folder), folder, error);
    }
    return folder;
}

} // namespace Preset
