// SPDX-License-Identifier: ISC
#include "wrappers/cli/autorepair/ChangeFile.h"

#include "wrappers/cli/autorepair/TemporaryBytes.h"

#include <algorithm>

namespace Cli {

ChangeFile::Stretch ChangeFile::Append(int64_t first, std::span<const double> samples)
{
    const Stretch stretch = {first, first + static_cast<int64_t>(samples.size() / channels), count};
    AppendObjects(file, samples);
    count += samples.size();
    return stretch;
}

void ChangeFile::AddTo(const Stretch& stretch, int64_t first, std::span<double> samples)
{
    const int64_t begin = std::max(first, stretch.first);
    const int64_t end =
        std::min(first + static_cast<int64_t>(samples.size() / channels), stretch.end);
    if (begin >= end) {
        return;
    }
    piece.resize(static_cast<std::size_t>(end - begin) * channels);
    ReadObjects(file,
                stretch.place + static_cast<std::size_t>(begin - stretch.first) * channels,
                std::span(piece));
    double* const target = samples.data() + (begin - first) * static_cast<int64_t>(channels);
    for (std::size_t i = 0; i < piece.size(); ++i) {
        target[i] += piece[i];
    }
}

} // namespace Cli
