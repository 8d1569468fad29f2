// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace DSP::Kernels {

/// The first pass of the complex transform is two of radix 4 in one, so that afterwards whole
/// vectors of neighbours go the same way; those after it are of radix 4, the last one of radix 4 or
/// 8.
inline constexpr std::ptrdiff_t FftFirstRadix = 16;

/// Complex factors of a butterfly of the first pass.
inline constexpr std::ptrdiff_t FftFirstFactors = 15;

/// The factors of this many neighbouring butterflies of the first pass lie together.
inline constexpr std::ptrdiff_t FftFirstGroup = 16;

/// Tables of a real transform of F samples by way of a complex one of length M = F / 2. With
/// W(n, L) = exp(-2 pi i n / L):
///  - `first`, for each group of butterflies p: factors W(j (p + i M / 16), M) for i from 0 to 3
///    and j from 1 to 3, by i; then W(j p, M / 4). Of each factor come the real parts of all of the
///    group, then the imaginary ones. A group that isn't full is filled up with anything.
///  - `middle`, for each length L = M / 16, M / 64 ... above 8 and each p below L / 4: pairs of
///    W(p, L), W(2 p, L), W(3 p, L), each (re, im).
///  - `separation`: cos(2 pi k / F) / 2 for k below M / 2, then sin(2 pi k / F) / 2.
struct FftTables {
    std::ptrdiff_t half; ///< M, a power of two from 64 on
    const float* first;
    const float* middle;
    const float* separation;
    float* work; ///< GetFftWorkSize() floats, best at a multiple of 64 bytes
};

/// Floats between parts of an array of the transform: room for the mirror of its first element, and
/// so many that the parts don't meet in the processor's cache.
inline constexpr std::ptrdiff_t FftPadding = 32;

/// Floats that a transform of `half` complex elements works in: two arrays of two parts.
constexpr std::ptrdiff_t GetFftWorkSize(std::ptrdiff_t half) noexcept
{
    return 4 * (half + FftPadding);
}

/// Real transforms there and back: X[k] = sum over n of x[n] exp(-2 pi i k n / F), for k from 0 to
/// F / 2 as pairs (re, im). Pointers may have any alignment. All are [process].
struct FftKernels {
    /// `samples` has F floats, `spectrum` F + 2; they may be the same memory.
    void (*forward)(const FftTables& tables, const float* samples, float* spectrum) noexcept;

    /// The same of samples[i] * window[i].
    void (*forwardOfProduct)(const FftTables& tables,
                             const float* samples,
                             const float* window,
                             float* spectrum) noexcept;

    /// The same in three parts, one after the other, with nothing else done with the tables in
    /// between: what a part leaves lies in their work. Of the spectrum come out only the bins below
    /// `binCount`, which is at most F / 2 + 1: 2 * binCount floats. `power` gets re * re + im * im
    /// of all F / 2 + 1 bins. They don't overlap each other.
    void (*firstPartOfProduct)(const FftTables& tables,
                               const float* samples,
                               const float* window) noexcept;
    void (*middlePart)(const FftTables& tables) noexcept;
    void (*lastPartWithPower)(const FftTables& tables,
                              std::ptrdiff_t binCount,
                              float* spectrum,
                              float* power) noexcept;

    /// Powers re * re + im * im of the transform of samples[i] * window[i] for i below `count`, at
    /// most F / 4, and zeros behind them. Of `power`, which has F / 2 + 1 floats, those below
    /// `binCount` are of use. Nothing overlaps.
    void (*powerOfPaddedProduct)(const FftTables& tables,
                                 const float* samples,
                                 const float* window,
                                 std::ptrdiff_t count,
                                 std::ptrdiff_t binCount,
                                 float* power) noexcept;

    /// Counterpart of forward(), divided by F, so that one after the other gives the samples back.
    /// Doesn't read the imaginary parts of the first and the last bin.
    void (*inverse)(const FftTables& tables, const float* spectrum, float* samples) noexcept;

    /// The same of `binCount` bins, at most F / 2 + 1, and zeros behind them, which `spectrum` need
    /// not have, with sums[i] += samples[i] * window[i] at the end. In parts, with middlePart()
    /// between these two.
    void (*firstPartOfLowBins)(const FftTables& tables,
                               const float* spectrum,
                               std::ptrdiff_t binCount) noexcept;
    void (*addLastPartOfInverse)(const FftTables& tables,
                                 const float* window,
                                 float* sums) noexcept;
};

} // namespace DSP::Kernels
