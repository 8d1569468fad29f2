// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/FileDescriptor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Cli {

/// What is added to a recording, stretch by stretch: from when a stretch has been worked out until
/// the recording comes by again. In a nameless temporary file. Throws FileError.
class ChangeFile {
public:
    /// Where a stretch lies in the recording, in frames, and in the file.
    struct Stretch {
        int64_t first = 0;
        int64_t end = 0;
        std::size_t place = 0;
    };

    explicit ChangeFile(std::size_t newChannels)
        : channels(newChannels)
        , file(OpenAnonymousFile())
    {
    }

    /// Keeps `samples`, interleaved, to be added from frame `first` on.
    Stretch Append(int64_t first, std::span<const double> samples);

    /// Calls `work(double& sample, double kept)` for each of `samples`, the recording from frame
    /// `first` on, that `stretch` holds something for.
    template <typename Work>
    void ForEach(const Stretch& stretch, int64_t first, std::span<double> samples, Work work)
    {
        const int64_t begin = std::max(first, stretch.first);
        const int64_t end =
            std::min(first + static_cast<int64_t>(samples.size() / channels), stretch.end);
        if (begin >= end) {
            return;
        }
        const std::span<const double> kept = Read(stretch, begin, end);
        double* const target = samples.data() + (begin - first) * static_cast<int64_t>(channels);
        for (std::size_t i = 0; i < kept.size(); ++i) {
            work(target[i], kept[i]);
        }
    }

    /// Adds what of `stretch` falls on `samples`, the recording from frame `first` on.
    void AddTo(const Stretch& stretch, int64_t first, std::span<double> samples);

private:
    std::span<const double> Read(const Stretch& stretch, int64_t begin, int64_t end);

    std::size_t channels;
    FileDescriptor file;
    std::size_t count = 0;
    std::vector<double> piece; // scratch
};

} // namespace Cli
