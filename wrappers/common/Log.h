// SPDX-License-Identifier: ISC
#pragma once

#include <functional>
#include <string>

namespace Wrapper {

/// Takes one line of text for the host's log, without an end of line. Called by the thread that
/// runs into what is to be logged, never from within processing.
using LogFunction = std::function<void(const std::string& text)>;

/// Writes the line "wrapper: text", for where there is no host to take it. [any]
void LogToStandardError(const char* wrapper, const std::string& text);

} // namespace Wrapper
