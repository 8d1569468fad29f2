// SPDX-License-Identifier: ISC
#include "wrappers/cli/effect/SessionOptions.h"

#include "wrappers/cli/text/Text.h"

namespace Cli {

bool IsPresetFile(std::string_view preset)
{
    return preset.find('/') != std::string_view::npos || LowerCase(preset).ends_with(".xml");
}

} // namespace Cli
