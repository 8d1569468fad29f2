// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace DSP::Kernels {

/// What an array by lag must have behind its last lag, in floats: zeros in values that are
/// searched, anything in others.
inline constexpr std::ptrdiff_t LagPadding = 16;

/// Smoothed values below this count as nothing, so that none becomes a denormal number.
inline constexpr float LeastSmoothed = 1e-30F;

/// How the scores of the lags follow their values.
struct ScoreTimes {
    float rise = 1;       ///< part of the way up that a smoothed value takes
    float fall = 1;       ///< part of the way down
    float relaxation = 0; ///< part of the way to 1 that a weight takes
};

/// What the lags are scored by; `count` of LagScores each.
struct LagState {
    float* smoothed = nullptr; ///< values that the scores follow
    float* weights = nullptr;
};

/// A multiple of this many lags is scored.
inline constexpr std::ptrdiff_t ScoreBlock = 32;

/// Scores by lag, none negative, and what lets the largest be found without a look at all of them.
struct LagScores {
    float* values = nullptr;  ///< `count`, 0 behind the last lag, and LagPadding zeros
    float* maxima = nullptr;  ///< `count` / 4, largest values of parts of the others
    std::ptrdiff_t count = 0; ///< a multiple of ScoreBlock
};

/// A period of a cosine, from -b to b, in steps of pi / b.
struct BellTable {
    const float* cosines = nullptr; ///< 2 b + 1 values and LagPadding
    const float* sines = nullptr;   ///< likewise
    int margin = 0;                 ///< b
};

/// A bell over the lags within b of `index`: its top lies off `index` by the angle whose cosine and
/// sine are these.
struct Bell {
    int index = 0;
    float cosine = 1;
    float sine = 0;
};

/// Steps of the search for the best lags. No value is negative. All are [process].
struct LagSearchKernels {
    /// For each lag, where `part` is times.rise if values[i] > smoothed[i], else times.fall:
    ///
    ///     smoothed[i] += (values[i] - smoothed[i]) * part, or 0 where that is < LeastSmoothed
    ///     scores[i] = weights[i] * smoothed[i], or 0 below firstLag
    ///     weights[i] += (1 - weights[i]) * times.relaxation
    void (*score)(const ScoreTimes& times,
                  const float* values,
                  LagState state,
                  int firstLag,
                  LagScores scores) noexcept;

    /// Index of the first largest score; 0 where all are 0.
    int (*findFirstLargest)(LagScores scores) noexcept;

    /// Zeroes the peak around `centre`: five values each way, counting the centre, and then as long
    /// as they fall, down to index 0 and up to `last`.
    void (*erasePeak)(float* values, int centre, int last) noexcept;

    /// The same in scores.
    void (*eraseScore)(LagScores scores, int centre, int last) noexcept;

    /// weights[index - b + j] = max(itself, bell[j] * slope + 1) for j = 0..2 b, where
    /// bell[j] = (cosines[j] * cosine + sines[j] * sine) / 2 + 1 / 2, between 0 and 1. Up to
    /// LagPadding weights behind the bell are read and written back as they are.
    void (*raise)(const BellTable& table, const Bell& bell, float slope, float* weights) noexcept;

    /// The same with min(itself, 1 - bell[j] * depth).
    void (*lower)(const BellTable& table, const Bell& bell, float depth, float* weights) noexcept;
};

} // namespace DSP::Kernels
