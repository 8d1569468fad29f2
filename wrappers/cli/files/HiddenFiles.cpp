// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/HiddenFiles.h"

#include <fmt/format.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <random>
#include <string_view>

namespace Cli {

namespace {

constexpr std::string_view Prefix = ".puffguard-";
constexpr std::string_view Ending = ".tmp";
constexpr size_t RandomDigits = 16;

bool IsHiddenName(std::string_view name)
{
    if (name.size() != Prefix.size() + RandomDigits + Ending.size() || !name.starts_with(Prefix) ||
        !name.ends_with(Ending)) {
        return false;
    }
    const std::string_view digits = name.substr(Prefix.size(), RandomDigits);
    return digits.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

// For file systems that neither know the flag nor second names of a file.
int RenameOverPlaceholder(const std::string& from, const std::string& to)
{
    const int placeholder = ::open(to.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (placeholder < 0) {
        return errno;
    }
    ::close(placeholder);
    if (::rename(from.c_str(), to.c_str()) == 0) {
        return 0;
    }
    const int failure = errno;
    ::unlink(to.c_str());
    return failure;
}

} // namespace

std::string MakeHiddenName(const std::string& target)
{
    const std::filesystem::path path(target);
    std::random_device random;
    // The target's name isn't part of it: that could already have the greatest length.
    const auto name = fmt::format("{}{:08x}{:08x}{}", Prefix, random(), random(), Ending);
    return (path.parent_path() / name).string();
}

void RemoveOldHiddenFiles(const std::string& target, time_t now)
{
    constexpr time_t SecondsPerDay = 24 * 60 * 60;
    const std::filesystem::path folder = std::filesystem::path(target).parent_path();
    std::error_code failure;
    std::filesystem::directory_iterator entry(folder.empty() ? "." : folder, failure);
    for (; !failure && entry != std::filesystem::end(entry); entry.increment(failure)) {
        if (!IsHiddenName(entry->path().filename().string())) {
            continue;
        }
        const char* const path = entry->path().c_str();
        struct stat status = {};
        if (::lstat(path, &status) == 0 && S_ISREG(status.st_mode) &&
            status.st_mtime < now - SecondsPerDay) {
            ::unlink(path);
        }
    }
}

int RenameToNew(const std::string& from, const std::string& to)
{
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
        return 0;
    }
    if (errno != EEXIST && ::link(from.c_str(), to.c_str()) == 0) {
        return ::unlink(from.c_str()) == 0 ? 0 : errno;
    }
    return errno == EEXIST ? EEXIST : RenameOverPlaceholder(from, to);
}

} // namespace Cli
