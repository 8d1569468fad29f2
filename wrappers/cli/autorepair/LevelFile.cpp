// SPDX-License-Identifier: ISC
#include "wrappers/cli/autorepair/LevelFile.h"

#include "wrappers/cli/autorepair/TemporaryBytes.h"

namespace Cli {

void LevelFile::Append(std::span<const AutoRepair::FrameLevels> frames)
{
    AppendObjects(file, frames);
    count += frames.size();
}

void LevelFile::Read(std::size_t first, std::span<AutoRepair::FrameLevels> frames) const
{
    ReadObjects(file, first, frames);
}

} // namespace Cli
