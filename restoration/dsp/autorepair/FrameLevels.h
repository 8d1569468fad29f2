// SPDX-License-Identifier: ISC
#pragma once

#include "restoration/dsp/autorepair/Percentile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace AutoRepair {

/// A band of frequencies in Hz, the upper edge outside.
struct Band {
    double low;
    double high;
};

/// Bands under a window of 30 ms: three of the low end where a pop is, one between, three of the
/// voice.
inline constexpr std::array LongBands{Band{15, 60},
                                      Band{60, 110},
                                      Band{110, 170},
                                      Band{170, 260},
                                      Band{260, 400},
                                      Band{400, 1000},
                                      Band{1000, 3000}};

/// Bands under a window of 20 ms, which shows better when something begins.
inline constexpr std::array ShortBands{
    Band{60, 140}, Band{140, 260}, Band{260, 500}, Band{500, 3000}};

/// What is kept of a moment of the recording; levels in dB, the mean of the channels' power.
struct FrameLevels {
    std::array<float, LongBands.size()> bands{};
    std::array<float, ShortBands.size()> shortBands{};
    // Of single bins under a window of 70 ms:
    RankedPair lowValley;   ///< around the 35th percentile of 20 to 110 Hz
    RankedPair upperValley; ///< around the 30th percentile of 50 to 210 Hz
    float line = 0;         ///< the strongest of 60 to 250 Hz
    float lineMean = 0;     ///< the mean power of 60 to 250 Hz
    float periodicity = 0;  ///< 0 to 36, see LowSpectrum
};
static_assert(std::is_trivially_copyable_v<FrameLevels>); // goes into files

/// Keeps the levels of a recording by frame, in memory or in a file. Throws what its maker decides.
class LevelStore {
public:
    LevelStore() = default;
    LevelStore(const LevelStore&) = delete;
    LevelStore& operator=(const LevelStore&) = delete;
    LevelStore(LevelStore&&) = delete;
    LevelStore& operator=(LevelStore&&) = delete;
    virtual ~LevelStore() = default;

    virtual void Append(std::span<const FrameLevels> frames) = 0;
    virtual std::size_t GetCount() const = 0;

    /// Fills `frames` with those from number `first` on, all of which are there.
    virtual void Read(std::size_t first, std::span<FrameLevels> frames) const = 0;
};

} // namespace AutoRepair
