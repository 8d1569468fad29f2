// SPDX-License-Identifier: ISC
#pragma once

#include "wrappers/common/Instance.h"

#include <cstdint>
#include <optional>
#include <vector>

struct TransformReadRecord;

namespace Wrapper {

/// One repair. Positions are centres of analysis frames, in samples of the input since the repair
/// last restarted (creation, reset, end of bypass, new format or latency); they may be negative.
/// Energies are sums of squared spectral magnitudes over all channels, the frames of the region and
/// the bins from 20 to 150 Hz.
struct Detection {
    uint32_t number = 0; ///< running number, from 0
    uint32_t frames = 0; ///< of the region
    int64_t centre = 0;  ///< samples
    int64_t start = 0;   ///< samples, first frame of the region
    int64_t end = 0;     ///< samples, last frame of the region
    float severity = 0;  ///< 0 to 1
    float pitchHz = 0;   ///< 0: unvoiced
    double energyBefore = 0;
    double energyAfter = 0;
};

/// Sums over all frames since the repair last restarted.
struct DetectionTotals {
    uint64_t hops = 0;       ///< frames analysed
    double bandEnergy = 0;   ///< before any repair; units of Detection::energyBefore
    uint32_t detections = 0; ///< number that the next repair will get
};

/// Reads the repairs that an instance makes. May be read while audio runs; the module keeps 1024
/// that nobody has read. Calls come from one thread at a time. [ui]
class Detections {
public:
    /// Begins with the next repair. `newInstance` lives longer.
    explicit Detections(const Instance& newInstance);

    /// Appends the repairs made since the last call to `detections`, oldest first. False, after a
    /// line in the log, when the module doesn't give them.
    bool Read(std::vector<Detection>& detections);

    /// Repairs that were overwritten before they could be read.
    uint64_t GetLost() const { return lost; }

    /// None, after a line in the log, when the module doesn't give them.
    std::optional<DetectionTotals> ReadTotals() const;

private:
    bool Ask(TransformReadRecord& record, const char* complaint) const;

    const Instance& instance;
    uint32_t next = 0;
    uint64_t lost = 0;
};

} // namespace Wrapper
