// SPDX-License-Identifier: ISC
#pragma once

#include <ctime>
#include <string>

namespace Cli {

/// A new name in the folder of `target`, for the file that is to take its place.
std::string MakeHiddenName(const std::string& target);

/// Removes files of such names that lie beside `target` for more than a day: the commands that
/// wrote them were killed. `now` is the time of the folder's own clock, which may be another
/// machine's.
void RemoveOldHiddenFiles(const std::string& target, time_t now);

/// Renames a file unless there is anything under its new name; returns 0 or the error number,
/// EEXIST in that case. Where the file system has no better way, an empty file has the name for a
/// moment.
int RenameToNew(const std::string& from, const std::string& to);

} // namespace Cli
