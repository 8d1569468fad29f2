// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/report/Events.h"

#include <string>

namespace Cli {

/// One line of a label track as Audacity reads it: start and end in seconds and a text, parted by
/// tabs.
std::string LabelLine(const Event& event);

} // namespace Cli
