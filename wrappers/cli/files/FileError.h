// SPDX-License-Identifier: ISC
#pragma once

#include <stdexcept>
#include <string>

namespace Cli {

/// Why one file could not be handled: a reason for a reader, without the file's name. The other
/// files of a run go on.
class FileError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;

    /// The reason that an error number of the system stands for, such as "No such file or
    /// directory".
    static FileError FromErrno(int number);
};

/// Does `work` and puts `name` before the reason when it fails, for a file that isn't the one that
/// the user named as input.
template <typename Work>
auto Naming(const std::string& name, Work work)
{
    try {
        return work();
    } catch (const FileError& error) {
        throw FileError(name + ": " + error.what());
    }
}

/// A command line that makes no sense: reported with exit code 2 before any file is touched.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Cli
