// SPDX-License-Identifier: ISC
#pragma once

#include <string>
#include <utility>

namespace Cli {

/// The name of a file on the command line. "-" is standard input where something is read, standard
/// output where something is written; empty means that none is wanted.
class FileName {
public:
    FileName() = default;
    explicit FileName(std::string newName)
        : name(std::move(newName))
    {
    }

    bool IsEmpty() const { return name.empty(); }
    bool IsStream() const { return name == "-"; }

    /// As it was typed.
    const std::string& Get() const { return name; }

    /// What messages call it where something is read or written; not fit for a terminal yet.
    std::string InputLabel() const { return IsStream() ? "stdin" : name; }
    std::string OutputLabel() const { return IsStream() ? "standard output" : name; }

    bool operator==(const FileName& other) const = default;

private:
    std::string name;
};

} // namespace Cli
