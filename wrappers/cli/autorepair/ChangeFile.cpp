// SPDX-License-Identifier: ISC
#include "wrappers/cli/autorepair/ChangeFile.h"

#include "wrappers/cli/autorepair/TemporaryBytes.h"

namespace Cli {

ChangeFile::Stretch ChangeFile::Append(int64_t first, std::span<const double> samples)
{
    const Stretch stretch = {first, first + static_cast<int64_t>(samples.size() / channels), count};
    AppendObjects(file, samples);
    count += samples.size();
    return stretch;
}

std::span<const double> ChangeFile::Read(const Stretch& stretch, int64_t begin, int64_t end)
{
    piece.resize(static_cast<std::size_t>(end - begin) * channels);
    ReadObjects(file,
                stretch.place + static_cast<std::size_t>(begin - stretch.first) * channels,
                std::span(piece));
    return piece;
}

} // namespace Cli
