// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <vector>

namespace CliTest {

/// What came of a run.
struct Outcome {
    int exitCode = -1; ///< minus the signal when one ended it
    std::string out;
    std::string err;
};

/// How to run.
struct RunSetup {
    std::string input = {};                    ///< bytes for standard input
    std::string folder = {};                   ///< working folder; empty: the test's own
    std::vector<std::string> environment = {}; ///< "NAME=VALUE" in addition
    bool asNobody = false;                     ///< without the rights of root
    std::string program = {};                  ///< instead of the built one
    std::string outTo = {};                    ///< file for standard output instead of `out`
};

/// Runs the built command with these arguments and waits for it; a run of more than two minutes is
/// ended and fails the test.
Outcome RunPuffguard(const std::vector<std::string>& arguments, const RunSetup& setup = {});

/// Starts the command, writes `input` without closing it, waits until `folder` holds a hidden file,
/// sends `signalNumber` and waits for the end.
Outcome InterruptPuffguard(const std::vector<std::string>& arguments,
                           const std::string& folder,
                           const std::string& input,
                           int signalNumber);

} // namespace CliTest
