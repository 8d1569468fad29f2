// SPDX-License-Identifier: ISC
#pragma once

#include <cstdint>
#include <optional>

namespace DSP {

/// What an element that repairs recordings says of the regions that it works on. [any]
class RestorationElement {
public:
    struct TimeRange {
        int64_t first = 0; ///< frames
        int64_t end = 0;
    };
    struct FrequencyRange {
        double lowHz = 0;
        double highHz = 0;
    };

    RestorationElement() = default;
    RestorationElement(const RestorationElement&) = delete;
    RestorationElement& operator=(const RestorationElement&) = delete;
    virtual ~RestorationElement() = default;

    /// Whether it repairs anything as it is set.
    bool IsRestoring() const { return !PassesThrough(); }
    /// The only time, or the only frequencies, that it could work on; none: any.
    virtual std::optional<TimeRange> GetFixedTimeRange() const { return std::nullopt; }
    virtual std::optional<FrequencyRange> GetFixedFrequencyRange() const { return std::nullopt; }
    /// Whether a region may be bounded in frequency.
    virtual bool SupportsFrequencyBounds() const { return true; }

protected:
    /// Whether everything comes out as it went in.
    virtual bool PassesThrough() const = 0;
};

} // namespace DSP
