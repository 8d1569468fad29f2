// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/qobase/util/String.h"

namespace Util {

/// Full path of the running program's file, with "/" separators; null when the platform doesn't
/// tell. [setup]
[[nodiscard]] String GetExecutablePath();

} // namespace Util
