// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/FrameLevels.h"
#include "wrappers/cli/files/FileDescriptor.h"

namespace Cli {

/// The levels of a recording in a nameless temporary file: those of an hour take 60 MiB.
class LevelFile final : public AutoRepair::LevelStore {
public:
    /// Throws FileError.
    LevelFile()
        : file(OpenAnonymousFile())
    {
    }

    /// Throws FileError; so does Read().
    void Append(std::span<const AutoRepair::FrameLevels> frames) override;
    std::size_t GetCount() const override { return count; }
    void Read(std::size_t first, std::span<AutoRepair::FrameLevels> frames) const override;

private:
    FileDescriptor file;
    std::size_t count = 0;
};

} // namespace Cli
