// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/instance/ReinstantiateWatch.h"

#include <system_error>

ReinstantiateWatch::ReinstantiateWatch(const String& folder)
    : file(folder.IsEmpty() ? std::filesystem::path()
                            : std::filesystem::path(folder.View()) / "reinstantiate.txt")
    , known(ReadTime())
{
}

std::optional<ReinstantiateWatch::Time> ReinstantiateWatch::ReadTime() const
{
    std::error_code failure;
    const Time time = std::filesystem::last_write_time(file, failure);
    return failure ? std::nullopt : std::optional<Time>(time);
}

bool ReinstantiateWatch::TakeChange()
{
    if (file.empty()) {
        return false;
    }
    const std::optional<Time> now = ReadTime();
    if (!now || now == known) {
        return false;
    }
    known = now;
    return true;
}
