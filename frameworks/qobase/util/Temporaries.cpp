// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Temporaries.h"

#include "frameworks/qobase/util/PlatformFile.h"

#include <filesystem>
#include <string_view>
#include <system_error>

namespace Util::Temporaries {
namespace {

constexpr std::string_view Ending = ".tmp";
constexpr uint32_t RandomDigits = 16;

bool IsAllOf(std::string_view text, std::string_view characters)
{
    return !text.empty() && text.find_first_not_of(characters) == std::string_view::npos;
}

/// Whether MakeName() may have made it.
bool IsName(std::string_view name)
{
    if (!name.starts_with('.') || !name.ends_with(Ending)) {
        return false;
    }
    name = name.substr(1, name.size() - 1 - Ending.size());
    const auto dash = name.find('-');
    return dash != std::string_view::npos && IsAllOf(name.substr(0, dash), "0123456789") &&
           name.size() == dash + 1 + RandomDigits &&
           IsAllOf(name.substr(dash + 1), "0123456789abcdef");
}

} // namespace

String MakeName()
{
    return String(".%1-%2.tmp")
        .arg(Platform::GetProcessNumber())
        .arg(Platform::GetRandomBits(), 16, RandomDigits);
}

void RemoveOld(const String& folder, int64_t now)
{
    constexpr int64_t SecondsPerDay = 24LL * 60 * 60;
    std::error_code error;
    std::filesystem::directory_iterator entry(folder.IsEmpty() ? "." : folder.ToStdString(), error);
    for (; !error && entry != std::filesystem::end(entry); entry.increment(error)) {
        if (!IsName(entry->path().filename().string())) {
            continue;
        }
        const String path(entry->path().string());
        const auto status = Platform::GetStatus(path);
        const bool isFile = status.error == 0 && status.kind == Platform::Kind::Regular;
        if (isFile && status.modificationTime < now - SecondsPerDay) {
            Platform::RemoveFile(path);
        }
    }
}

} // namespace Util::Temporaries
