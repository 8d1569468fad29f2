// SPDX-License-Identifier: ISC
// Texts are joined where two values go in: a name may itself hold what looks like a placeholder.
#include "frameworks/plugincore/preset/manager/PresetTexts.h"

namespace Preset::Texts {

String ExistsAlready(const String& path)
{
    return "The preset " + path + " exists already.";
}

String FolderUnreadable(const String& folder, const String& reason)
{
    return "The folder " + folder + " cannot be read. (" + reason + ")";
}

String FolderRefused(const String& folder)
{
    return "The preset folder " + folder + " is no full path.";
}

String FolderNotWritable(const String& folder)
{
    return "The preset folder " + folder + " cannot be written.";
}

String FolderUnusable(const String& folder)
{
    return "The folder " + folder + " cannot hold presets.";
}

String RemoveQuestion(const String& name)
{
    return String("Are you sure you want to remove '%1'?").arg(name);
}

String RemoveFailed(const String& name, const String& reason)
{
    return "Error removing preset " + name + ": " + reason;
}

String DescribeEntryFault(FileFault fault)
{
    switch (fault) {
    case FileFault::Newer:
        return "Preset was created in a newer, incompatible version";
    case FileFault::Earlier:
        return "Preset was created in an earlier, incompatible version";
    default:
        return InvalidPreset;
    }
}

String DescribeFileFault(FileFault fault, const String& path, const String& type)
{
    switch (fault) {
    case FileFault::Unreadable:
        return String("The file %1 cannot be read.").arg(path);
    case FileFault::NotValid:
        return String("The file %1 is not a valid preset file.").arg(path);
    case FileFault::OtherProduct:
        return "The file \"" + path + "\" is a preset for " + type +
               ", and cannot be used in this plugin.";
    case FileFault::NotForUs:
        return String("The file %1 is not a preset for this plug-in.").arg(path);
    case FileFault::NotSet:
        return String("An error occurred while setting the preset found in the file %1.").arg(path);
    case FileFault::NotWritable:
        return String("The file %1 cannot be written.").arg(path);
    case FileFault::Newer:
    case FileFault::Earlier:
        break;
    }
    return DescribeEntryFault(fault);
}

} // namespace Preset::Texts
