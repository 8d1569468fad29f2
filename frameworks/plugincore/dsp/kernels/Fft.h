// SPDX-License-Identifier: ISC
#pragma once

#include <cstddef>

namespace DSP::Kernels {

/// Tables of a real transform of F samples; FFTImpl makes them and tells what they hold.
struct FftTables {
    std::ptrdiff_t half;     ///< length of the complex transform, F / 2, a power of two from 64 on
    const float* first;      ///< factors of the first pass
    const float* middle;     ///< factors of the later ones, one behind the other
    const float* separation; ///< halved factors between the complex and the real transform
    float* work;             ///< GetFftWorkSize() floats, best at a multiple of 64 bytes
};

/// The first pass is two of radix 4 in one, so that afterwards whole vectors of neighbours go the
/// same way; those after it are of radix 4, the last one of radix 4 or 8.
inline constexpr std::ptrdiff_t FftFirstRadix = 16;

/// Complex factors of a butterfly of the first pass.
inline constexpr std::ptrdiff_t FftFirstFactors = 15;

/// The factors of this many neighbouring butterflies of the first pass lie together, or of all
/// where there are fewer.
inline constexpr std::ptrdiff_t FftFirstGroup = 16;

/// Floats between parts of an array of the transform: room for the mirror of its first element, and
/// so many that the parts don't meet in the processor's cache.
inline constexpr std::ptrdiff_t FftPadding = 32;

/// Floats that a transform of `half` complex elements works in: two arrays of two parts.
constexpr std::ptrdiff_t GetFftWorkSize(std::ptrdiff_t half) noexcept
{
    return 4 * (half + FftPadding);
}

/// Real transforms there and back, as FFTImpl describes them. All are [process].
struct FftKernels {
    /// `samples` has F floats, `spectrum` F + 2; they may be the same memory.
    void (*forward)(const FftTables& tables, const float* samples, float* spectrum) noexcept;

    /// The same of samples[i] * window[i].
    void (*forwardOfProduct)(const FftTables& tables,
                             const float* samples,
                             const float* window,
                             float* spectrum) noexcept;

    /// The same, of which `spectrum` gets only the bins below `binCount`, which is at most F / 2 +
    /// 1: 2 * binCount floats. `power` gets re * re + im * im of all F / 2 + 1 bins. They don't
    /// overlap each other or what is read.
    void (*forwardOfProductWithPower)(const FftTables& tables,
                                      const float* samples,
                                      const float* window,
                                      std::ptrdiff_t binCount,
                                      float* spectrum,
                                      float* power) noexcept;

    /// Counterpart of forward().
    void (*inverse)(const FftTables& tables, const float* spectrum, float* samples) noexcept;
};

} // namespace DSP::Kernels
