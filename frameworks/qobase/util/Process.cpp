// SPDX-License-Identifier: ISC
#include "frameworks/qobase/util/Process.h"

#include <filesystem>
#include <system_error>

namespace Util {

String GetExecutablePath()
{
    std::error_code error;
    const auto path = std::filesystem::read_symlink("/proc/self/exe", error);
    return error ? String() : String(path.generic_string());
}

} // namespace Util
