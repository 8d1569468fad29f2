// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <vector>

namespace Bench {

/// What came of a program's run.
struct ProgramRun {
    bool succeeded = false;
    double seconds = 0;          ///< from start to end
    double computingSeconds = 0; ///< of all its threads, with what the system did for it
    std::string errors;          ///< what it wrote to standard error
};

/// Runs a program, found as a shell finds it, and waits for its end; one that takes more than ten
/// minutes is ended. What it writes to standard output is dropped.
ProgramRun RunProgram(const std::vector<std::string>& words);

} // namespace Bench
