// SPDX-License-Identifier: ISC
#include "wrappers/cli/text/Version.h"

namespace Cli {

const char* GetVersion()
{
    return PUFFGUARD_VERSION;
}

} // namespace Cli
