// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/LagSearch.h"

#include <cstddef>

namespace DSP::Kernels {

/// A complex transform of `length` elements in place, a power of two from 16: stages of radix 4 as
/// long as more than 8 elements are left, then one of 4 or 8.
struct TransformPlan {
    std::ptrdiff_t length = 0;
    const float* factors = nullptr;    ///< stage after stage: re, im of 3 factors a butterfly
    const float* separation = nullptr; ///< by bin to the middle: cosine, sine
    const int* order = nullptr; ///< where the element of each index lies, and the first again
};

/// Sizes and tables of a correlation; they outlive the plan. F is the length of the real transform
/// and N = F / 2 that of the cosine transform.
struct CorrelationPlan {
    std::ptrdiff_t frameLength = 0;      ///< n, F / 4 to 3 F / 4
    std::ptrdiff_t minLag = 0;           ///< shortest lag searched
    std::ptrdiff_t maxLag = 0;           ///< longest, at least minLag, below N
    TransformPlan whole;                 ///< N elements
    TransformPlan half;                  ///< N / 2 elements
    const float* window = nullptr;       ///< w, n values, and a 0
    const float* sines = nullptr;        ///< 2 sin(pi j / N) for j < N / 2
    const double* cosines = nullptr;     ///< 4 cos(pi j / N) for j < N / 2, rounded to floats
    const float* compensation = nullptr; ///< c, to maxLag + 1: weight of the lag / (8 N)
};

/// Samples by phase: that of index i lies in row i modulo the step, column i / step. Frame j begins
/// at column j.
struct PolyphaseView {
    const float* samples = nullptr;
    std::ptrdiff_t rowLength = 0;
    /// log2 of the step from one frame to the next; a step is from 2 to F / 4 samples.
    int stepShift = 0;
};

/// Frames of a correlation at most; the rows of samples are readable that far.
inline constexpr int MaxFrames = 16;

/// Lags that a row of results has, of which those after `maxLag`, one at least, are 0.
[[gnu::always_inline]] constexpr std::ptrdiff_t GetLagCount(std::ptrdiff_t maxLag) noexcept
{
    return (maxLag + 2 + MaxFrames - 1) / MaxFrames * MaxFrames;
}

/// Parts that the work of a correlation comes in; the longest takes a seventh of it.
inline constexpr int CorrelationParts = 12;

/// Room that a row of results takes, in floats.
[[gnu::always_inline]] constexpr std::ptrdiff_t GetCorrelationStride(std::ptrdiff_t maxLag) noexcept
{
    return GetLagCount(maxLag) + LagPadding;
}

/// Scratch that a correlation needs, in floats.
constexpr std::ptrdiff_t GetCorrelationScratch(const CorrelationPlan& plan)
{
    return MaxFrames * (3 * plan.whole.length + GetLagCount(plan.maxLag));
}

/// Where a correlation goes: for each frame a row of correlations, and the lag where its search
/// begins.
struct CorrelationResult {
    float* correlation = nullptr; ///< rows of GetCorrelationStride(maxLag), whose padding is kept
    int* firstLags = nullptr;     ///< room for MaxFrames
};

/// Correlations of frames side by side, a frame a lane. All are [process].
struct CorrelationKernels {
    /// Does one part of the correlation of 1 to MaxFrames frames: all from 0 to CorrelationParts -
    /// 1 are due one after the other. Samples and scratch stay as they are meanwhile, the results
    /// are there after the last part. For each frame, of n samples x:
    ///
    ///     m[k] = abs(sum over i of w[i] x[i] exp(-2 pi i k sqrt(-1) / F)), k = 0..N
    ///     s[l] = m[0] + m[N] cos(pi l) + sum over 0 < k < N of 2 m[k] cos(pi k l / N)
    ///     r[l] = max(0, 4 s[l] c[l]), l = 0..maxLag
    ///
    /// The first lag is the last up to which r falls from lag 0 on, looked for below
    /// (minLag + maxLag) / 2, but at least minLag. What is written is r up to there, and from there
    /// on r[l] - min(r[l] / 2, (r[l / 2] + r[(l + 1) / 2]) / 8), with indices rounded down.
    void (*correlatePart)(int part,
                          const CorrelationPlan& plan,
                          const PolyphaseView& source,
                          int frames,
                          float* scratch,
                          const CorrelationResult& result) noexcept;
};

} // namespace DSP::Kernels
