// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/FileError.h"

#include <system_error>

namespace Cli {

FileError FileError::FromErrno(int number)
{
    // std::strerror isn't safe beside other threads; the category's text is.
    FileError error(std::generic_category().message(number));
    return error;
}

} // namespace Cli
