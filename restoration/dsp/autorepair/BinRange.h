// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>
#include <span>

namespace AutoRepair {

/// Bins of a transform that a range of frequencies falls on: `first` up to, not including, `end`.
struct BinRange {
    int first = 0;
    int end = 0;

    int GetCount() const { return end - first; }

    /// The values of these bins.
    std::span<const float> Of(std::span<const float> values) const
    {
        return values.subspan(static_cast<std::size_t>(first),
                              static_cast<std::size_t>(GetCount()));
    }
};

/// Where the bins of a transform of `size` samples lie.
class BinScale {
public:
    BinScale(int size, double sampleRate)
        : step(1.0 / (size * (1.0 / sampleRate)))
    {
    }

    double GetFrequency(int bin) const { return bin * step; } ///< Hz

    /// The first bin at `hertz` or above.
    int FirstFrom(double hertz) const
    {
        auto bin = static_cast<int>(hertz / step);
        bin -= bin > 0 ? 1 : 0; // the division may have been rounded up
        while (GetFrequency(bin) < hertz) {
            ++bin;
        }
        return bin;
    }

    /// From `low` up to below `high`.
    BinRange Below(double low, double high) const { return {FirstFrom(low), FirstFrom(high)}; }

    /// From `low` up to `high` itself.
    BinRange UpTo(double low, double high) const
    {
        int end = FirstFrom(high);
        end += GetFrequency(end) == high ? 1 : 0;
        return {FirstFrom(low), end};
    }

private:
    double step; // Hz
};

} // namespace AutoRepair
