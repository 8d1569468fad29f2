// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/Path.h"
#include "frameworks/qobase/util/PlatformFile.h"

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <string>
#include <string_view>

namespace Util::Path {
namespace {

/// The absolute path in an environment variable, without separators at its end; empty for none.
String FolderFromEnvironment(const char* variable)
{
    // NOLINTNEXTLINE(concurrency-mt-unsafe): the environment is not changed while threads run
    const String value(std::getenv(variable));
    if (!value.StartsWith("/")) {
        return {};
    }
    return value.Left(std::max(1U, static_cast<uint32_t>(value.View().find_last_not_of('/') + 1)));
}

String BaseFolder(const char* variable, const char* belowHome)
{
    const String folder = FolderFromEnvironment(variable);
    return folder.IsEmpty() ? Join(GetHomeFolder(), belowHome) : folder;
}

void SkipBlanks(std::string_view& text)
{
    text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
}

bool Skip(std::string_view& text, std::string_view prefix)
{
    if (!text.starts_with(prefix)) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

/// The folder in a line `XDG_DOCUMENTS_DIR="$HOME/..."` or `="/..."`; "\" guards a character.
std::optional<String> ParseDocumentsLine(std::string_view line)
{
    SkipBlanks(line);
    if (!Skip(line, "XDG_DOCUMENTS_DIR")) {
        return {};
    }
    SkipBlanks(line);
    if (!Skip(line, "=")) {
        return {};
    }
    SkipBlanks(line);
    if (!Skip(line, "\"")) {
        return {};
    }
    const bool belowHome = Skip(line, "$HOME");
    std::string folder;
    for (std::size_t i = 0; i < line.size() && line[i] != '"'; ++i) {
        if (line[i] == '\\' && i + 1 < line.size()) {
            ++i;
        }
        folder += line[i];
    }
    folder.erase(folder.find_last_not_of('/') + 1);
    if (belowHome && folder.empty()) {
        return GetHomeFolder();
    }
    if (folder.empty() || folder[0] != '/') {
        return {};
    }
    return belowHome ? Join(GetHomeFolder(), folder) : String(folder);
}

} // namespace

String GetHomeFolder()
{
    if (String home = FolderFromEnvironment("HOME"); !home.IsEmpty()) {
        return home;
    }
    const String recorded = Platform::GetRecordedHome();
    return recorded.StartsWith("/") ? recorded : String("/");
}

String GetApplicationDataFolder()
{
    return BaseFolder("XDG_DATA_HOME", ".local/share");
}

String GetConfigurationFolder()
{
    return BaseFolder("XDG_CONFIG_HOME", ".config");
}

String GetDocumentsFolder()
{
    constexpr uint64_t MostBytes = 1ULL << 20;
    String folder = Join(GetHomeFolder(), "Documents");
    const auto file = ReadWholeFile(Join(GetConfigurationFolder(), "user-dirs.dirs"), MostBytes);
    if (!file) {
        return folder;
    }
    // The file is a list of assignments for a shell, where the last one holds.
    for (const String& line : String(std::string(file->begin(), file->end())).Split('\n')) {
        folder = ParseDocumentsLine(line.View()).value_or(folder);
    }
    return folder;
}

String ExpandUserFolders(const String& pattern)
{
    const String documents("%USERDOCS%");
    if (pattern.StartsWith(documents)) {
        return GetDocumentsFolder() + ToNative(pattern.Mid(documents.Length()));
    }
    const String native = ToNative(pattern);
    return native == "~" || native.StartsWith("~/") ? GetHomeFolder() + native.Mid(1) : native;
}

} // namespace Util::Path
