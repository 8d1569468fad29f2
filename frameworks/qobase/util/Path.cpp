// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Path.h"

#include "frameworks/qobase/util/File.h"
#include "frameworks/qobase/util/PlatformFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

namespace Util::Path {
namespace {

constexpr char Separator = '/';
constexpr std::string_view AnySeparator = "/\\";

/// "//server" with nothing that names a share behind it: two separators start a network path, one
/// or three don't.
bool IsMalformedNetworkPath(std::string_view path)
{
    const auto start = path.find_first_not_of(AnySeparator);
    if (std::min(start, path.size()) != 2) {
        return false;
    }
    const auto end = path.find_first_of(AnySeparator, 2);
    return path.find_first_not_of(AnySeparator, end) == std::string_view::npos;
}

Expected<void> MakeOne(const String& path, Visibility visibility)
{
    const uint32_t permissions = visibility == Visibility::OwnerOnly ? 0700 : 0777;
    const int error = IsDirectory(path) ? 0 : Platform::MakeFolder(path, permissions);
    // Another process may have been faster.
    if (error == 0 || (error == EEXIST && IsDirectory(path))) {
        return {};
    }
    return File::MakeError("_wmkdir() failed", path, error);
}

} // namespace

String Join(const String& folder, const String& file)
{
    if (folder.IsEmpty()) {
        return file;
    }
    std::string_view head = folder.View();
    head = head.substr(0, head.find_last_not_of(Separator) + 1);
    std::string_view tail = file.View();
    tail.remove_prefix(std::min(tail.find_first_not_of(Separator), tail.size()));
    return std::string(head) + Separator + std::string(tail);
}

String ToNative(const String& path)
{
    std::string native = path.ToStdString();
    std::replace(native.begin(), native.end(), '\\', Separator);
    return {std::move(native)};
}

String GetFileName(const String& path)
{
    const std::string_view view = path.View();
    return view.substr(view.rfind(Separator) + 1); // npos + 1 is the start
}

String GetStem(const String& path)
{
    const String name = GetFileName(path);
    const auto dot = name.View().rfind('.');
    return dot == 0 ? name : String(name.View().substr(0, dot));
}

String GetFolder(const String& path)
{
    const std::string_view view = path.View();
    const auto end = view.rfind(Separator);
    if (end == std::string_view::npos) {
        return "";
    }
    return view.substr(0, std::max<std::size_t>(end, 1));
}

Expected<void> MakeDirectory(const String& path, Recursive recursive, Visibility visibility)
{
    const std::string_view view = path.View();
    if (view.empty()) {
        return File::MakeError("path parsing failed", path, EINVAL);
    }
    if (IsMalformedNetworkPath(view)) {
        return File::MakeError(
            "Create(true) failed.  Input looks like a malformed UNC path", path, EINVAL);
    }
    if (recursive == Recursive::Yes) {
        for (auto end = view.find(Separator, 1); end != std::string_view::npos;
             end = view.find(Separator, end + 1)) {
            if (auto made = MakeOne(view.substr(0, end), visibility); !made) {
                return made;
            }
        }
    }
    return MakeOne(path, visibility);
}

bool IsDirectory(const String& path)
{
    const auto status = Platform::GetStatus(path);
    return status.error == 0 && status.kind == Platform::Kind::Folder;
}

bool IsAbsolute(const String& path)
{
    return path.View().starts_with(Separator);
}

std::vector<String> ListFiles(const String& folder, const String& extension)
{
    const String wanted = extension.ToLower();
    std::vector<String> files;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder.ToStdString(), error);
    for (; !error && entry != std::filesystem::end(entry); entry.increment(error)) {
        std::error_code unknown; // an entry that vanished is none
        if (!entry->is_regular_file(unknown)) {
            continue;
        }
        const String name(entry->path().filename().string());
        if (name.ToLower().View().ends_with(wanted.View())) {
            files.push_back(Join(folder, name));
        }
    }
    std::sort(files.begin(), files.end());
    return files;
}

} // namespace Util::Path
