// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/Error.h"

namespace Preset {

struct ManagerErrorKind;

/// The messages of the preset manager; the detail is the reason, where that is known.
using ManagerError = Util::BasicError<ManagerErrorKind>;

/// Why a file can't be used as a preset.
enum class FileFault {
    Unreadable,
    NotValid,
    OtherProduct, ///< a preset, but of another type
    NotForUs,     ///< no preset that any product is known to write
    Newer,
    Earlier,
    NotSet, ///< read, but the elements refused it
    NotWritable
};

/// Texts of the preset dialog.
namespace Texts {
inline constexpr const char* FactorySettings = "Factory settings";
inline constexpr const char* FormerSettings = "Settings before you opened the preset manager";
inline constexpr const char* InvalidPreset = "Error: invalid preset, please select another.";
inline constexpr const char* CommentPrompt = "[Click here to enter a comment]";
inline constexpr const char* NewPreset = "New Preset";
inline constexpr const char* Hidden = "Hidden by your preset of the same name.";

/// For a preset or file that isn't to be replaced.
String ExistsAlready(const String& path);
/// In a list, in the place of what a folder holds.
String FolderUnreadable(const String& folder, const String& reason);
/// For a folder that the user has chosen.
String FolderRefused(const String& folder);
String FolderNotWritable(const String& folder);
String FolderUnusable(const String& folder);
String RemoveQuestion(const String& name);
String RemoveFailed(const String& name, const String& reason);

/// For an entry of the list.
String DescribeEntryFault(FileFault fault);
/// For a file that was named by its path; `type` is the file's own.
String DescribeFileFault(FileFault fault, const String& path, const String& type);
} // namespace Texts

} // namespace Preset
