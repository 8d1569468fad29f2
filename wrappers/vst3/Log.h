// SPDX-License-Identifier: ISC
#pragma once

#include <string>

namespace Vst3 {

/// Writes a line to standard error: the format's hosts take no messages. [any]
void WriteLog(const std::string& text);

} // namespace Vst3
