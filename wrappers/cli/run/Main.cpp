// SPDX-License-Identifier: ISC
#include "wrappers/cli/files/CleanUp.h"
#include "wrappers/cli/files/FileDescriptor.h"
#include "wrappers/cli/files/FileError.h"
#include "wrappers/cli/run/Batch.h"
#include "wrappers/cli/run/OptionChecks.h"

#include <unistd.h>

#include <exception>
#include <string>

namespace {

constexpr int Failed = 1;
constexpr int BadUsage = 2;

int Complain(const std::exception& error, int exitCode)
{
    const std::string line = std::string("puffguard: ") + error.what() + "\n";
    static_cast<void>(Cli::WriteFully(STDERR_FILENO, line));
    return exitCode;
}

int Run(int argc, char** argv)
{
    const auto parsed = Cli::ParseOptions(argc, argv);
    if (const auto* answer = std::get_if<Cli::Answer>(&parsed)) {
        const int failure = Cli::WriteFully(STDOUT_FILENO, answer->text);
        if (failure != 0) {
            throw Cli::FileError::FromErrno(failure);
        }
        return 0;
    }
    const auto& options = std::get<Cli::Options>(parsed);
    Cli::CheckStandardOutput(options, ::isatty(STDOUT_FILENO) != 0);
    return Cli::RunBatch(options);
}

} // namespace

int main(int argc, char** argv)
{
    Cli::InstallCleanUpOnSignals();
    try {
        return Run(argc, argv);
    } catch (const Cli::UsageError& error) {
        return Complain(error, BadUsage);
    } catch (const std::exception& error) {
        return Complain(error, Failed);
    }
}
