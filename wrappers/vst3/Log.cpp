// SPDX-License-Identifier: ISC
#include "wrappers/vst3/Log.h"

#include <cstdio>

namespace Vst3 {

void WriteLog(const std::string& text)
{
    std::fprintf(stderr, "puffguard.vst3: %s\n", text.c_str());
}

} // namespace Vst3
