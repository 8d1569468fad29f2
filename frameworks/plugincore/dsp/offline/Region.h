// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

namespace DSP {

/// A rectangle of a recording's time and frequency.
struct RegionBox {
    static constexpr double NoUpperBound = std::numeric_limits<double>::infinity();

    int64_t first = 0; ///< frame
    int64_t end = 0;   ///< frame behind the last one
    double lowHz = 0;
    double highHz = NoUpperBound;

    int64_t GetLength() const noexcept { return end - first; }
    bool IsBounded() const noexcept { return lowHz > 0 || highHz != NoUpperBound; }
    bool HasSameBand(const RegionBox& other) const noexcept
    {
        return lowHz == other.lowHz && highHz == other.highHz;
    }
};

/// What of a recording is worked on in one go: a rectangle of time and frequency, or a union of
/// them. Other shapes aren't needed by anybody who selects words and low ends, and a union of
/// rectangles comes as near to them as is wanted.
class Region {
public:
    /// A box with the fades at its edges, which are centred on them and lie in the recording.
    struct Part {
        RegionBox box;
        int64_t fadeIn = 0;  ///< frames
        int64_t fadeOut = 0; ///< frames

        int64_t GetFadeInBegin() const noexcept;  ///< first frame that is changed
        int64_t GetFadeOutBegin() const noexcept; ///< first frame that is changed less
        int64_t GetEnd() const noexcept { return GetFadeOutBegin() + fadeOut; }
    };

    /// `newParts`, at least one, are sorted by their begins.
    explicit Region(std::vector<Part> newParts);

    const std::vector<Part>& GetParts() const noexcept { return parts; }
    /// With the fades: all that may be changed.
    int64_t GetFirst() const noexcept { return first; }
    int64_t GetEnd() const noexcept { return end; }
    int64_t GetLength() const noexcept { return end - first; }

    /// Whether a part is bounded in frequency.
    bool IsBounded() const noexcept;
    /// The band that holds all parts.
    double GetLowHz() const noexcept { return lowHz; }
    double GetHighHz() const noexcept { return highHz; }
    bool HasOneBand() const noexcept;

    /// How long the transforms of a filterbank last that tells the parts' bands from what is beside
    /// them, in units of OversampledFilterbank::configure(): 0.001 to 2 s. `rate` in Hz.
    double GetSelectivity(double rate) const noexcept;

    /// Indices of the parts whose boxes hold a frame, or of the nearest one. [any]
    void FindParts(int64_t frame, std::vector<std::size_t>& indices) const;

private:
    std::vector<Part> parts;
    int64_t first = 0;
    int64_t end = 0;
    double lowHz = 0;
    double highHz = RegionBox::NoUpperBound;
};

} // namespace DSP
