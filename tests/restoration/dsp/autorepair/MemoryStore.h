// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/FrameLevels.h"

#include <algorithm>
#include <vector>

namespace Support {

/// Levels of a short recording.
class MemoryStore final : public AutoRepair::LevelStore {
public:
    void Append(std::span<const AutoRepair::FrameLevels> added) override
    {
        frames.insert(frames.end(), added.begin(), added.end());
    }
    std::size_t GetCount() const override { return frames.size(); }
    void Read(std::size_t first, std::span<AutoRepair::FrameLevels> target) const override
    {
        std::copy_n(
            frames.begin() + static_cast<std::ptrdiff_t>(first), target.size(), target.begin());
    }

    std::vector<AutoRepair::FrameLevels> frames;
};

} // namespace Support
