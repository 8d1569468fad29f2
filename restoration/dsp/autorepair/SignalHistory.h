// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace AutoRepair {

/// The latest samples of a stream under their numbers.
class SignalHistory {
public:
    /// Where new samples are appended to.
    std::vector<float>& GetTail() { return samples; }

    int64_t GetEnd() const { return first + static_cast<int64_t>(samples.size()); }

    /// The samples from number `index` on, which hasn't been dropped.
    const float* From(int64_t index) const { return samples.data() + (index - first); }

    /// Forgets what lies before number `index`, now and then, so that it costs little.
    void DropBefore(int64_t index)
    {
        const int64_t count = index - first;
        if (count > static_cast<int64_t>(samples.size() / 2)) {
            samples.erase(samples.begin(), samples.begin() + static_cast<std::ptrdiff_t>(count));
            first = index;
        }
    }

private:
    std::vector<float> samples;
    int64_t first = 0;
};

} // namespace AutoRepair
