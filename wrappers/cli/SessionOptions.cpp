// SPDX-License-Identifier: ISC
#include "wrappers/cli/SessionOptions.h"

#include "wrappers/cli/Text.h"

namespace Cli {

bool IsPresetFile(std::string_view preset)
{
    return preset.find('/') != std::string_view::npos || LowerCase(preset).ends_with(".xml");
}

} // namespace Cli
