// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/cli/files/FileDescriptor.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Cli {

/// What a recording is changed by, stretch by stretch: from when a stretch has been worked out
/// until the recording comes by again. In a nameless temporary file. Throws FileError.
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

    /// Keeps `samples`, interleaved, for the frames from `first` on.
    Stretch Append(int64_t first, std::span<const double> samples);

    /// Calls `work(double& sample, double kept)` for each of `samples`, the recording from frame
    /// `first` on, that one of `stretches` holds something for; these are in order of their ends,
    /// and of their beginnings.
    template <typename Work>
    void
    ForEach(std::span<const Stretch> stretches, int64_t first, std::span<double> samples, Work work)
    {
        const int64_t end = first + static_cast<int64_t>(samples.size() / channels);
        auto stretch =
            std::partition_point(stretches.begin(), stretches.end(), [first](const Stretch& one) {
                return one.end <= first;
            });
        for (; stretch != stretches.end() && stretch->first < end; ++stretch) {
            const int64_t from = std::max(first, stretch->first);
            const std::span<const double> kept = Read(*stretch, from, std::min(end, stretch->end));
            double* const target = samples.data() + (from - first) * static_cast<int64_t>(channels);
            for (std::size_t i = 0; i < kept.size(); ++i) {
                work(target[i], kept[i]);
            }
        }
    }

private:
    std::span<const double> Read(const Stretch& stretch, int64_t begin, int64_t end);

    std::size_t channels;
    FileDescriptor file;
    std::size_t count = 0;
    std::vector<double> piece; // scratch
};

} // namespace Cli
