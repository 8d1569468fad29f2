// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Expected.h"

#include <vector>

/// Paths, with "/" as the separator of this platform. Nothing throws. [any]
namespace Util::Path {

/// Folder and file with exactly one separator between them; just the file when the folder is empty.
String Join(const String& folder, const String& file);
/// Each "/" and "\" as the platform's separator. A platform whose calls take only short paths also
/// marks the long ones here ("\\?\" in front); this one has no such limit.
String ToNative(const String& path);
/// The last part; empty when the path ends in a separator.
String GetFileName(const String& path);
/// The last part without its last extension: "a/b.c.xml" gives "b.c". A leading dot starts none.
String GetStem(const String& path);
/// All before the last separator, or "/" where that is the first character; empty when there is no
/// separator.
String GetFolder(const String& path);

enum class Recursive { No, Yes };
/// Who may look into a folder that is made: whoever the user's mask allows, or nobody else.
enum class Visibility { AsMaskSays, OwnerOnly };
/// Makes a folder, with the ones above it when asked. A folder that is there is a success, and
/// stays as it is. Fails as a File::Error.
Expected<void> MakeDirectory(const String& path,
                             Recursive recursive,
                             Visibility visibility = Visibility::AsMaskSays);
bool IsDirectory(const String& path);
/// Whether the path means the same from wherever it is looked at.
bool IsAbsolute(const String& path);

/// Full paths of the regular files in a folder whose name ends in `extension` (with its dot,
/// matched without case), in byte order. None for a folder that can't be read.
std::vector<String> ListFiles(const String& folder, const String& extension);

/// The user's folders, without a separator at the end; they need not exist. They follow the
/// environment, so that a test can move them. Relative paths in the XDG variables don't count.
String GetHomeFolder();            ///< $HOME, else as the system's records have it
String GetApplicationDataFolder(); ///< $XDG_DATA_HOME or ~/.local/share
String GetConfigurationFolder();   ///< $XDG_CONFIG_HOME or ~/.config
String GetDocumentsFolder();       ///< the DOCUMENTS of xdg-user-dir, or ~/Documents
/// "%USERDOCS%", or "~" before a separator or alone, at the start of a pattern filled in,
/// separators of the rest made native.
String ExpandUserFolders(const String& pattern);

} // namespace Util::Path
