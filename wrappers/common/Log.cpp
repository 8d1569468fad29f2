// SPDX-License-Identifier: ISC
#include "wrappers/common/Log.h"

#include <cstdio>

namespace Wrapper {

void LogToStandardError(const char* wrapper, const std::string& text)
{
    std::fprintf(stderr, "%s: %s\n", wrapper, text.c_str());
}

} // namespace Wrapper
