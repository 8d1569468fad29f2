// SPDX-License-Identifier: ISC
#pragma once

#include "frameworks/plugincore/dsp/kernels/KernelSet.h"
#include "frameworks/qobase/util/AlignedVector.h"
#include "frameworks/qobase/util/Realtime.h"

#include <array>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace DSP {

template <typename T>
class FFTImpl;

/// The parts of a transform that is spread over several calls, in the order of their values.
enum class FFTPart : uint8_t { First, Middle, Last };
inline constexpr std::array FFTParts = {FFTPart::First, FFTPart::Middle, FFTPart::Last};

/// Real discrete Fourier transform of F = 2^order samples, in single precision.
///
/// A spectrum has F + 2 floats: bins 0 to F/2 as interleaved (re, im), bin k at k * sampleRate / F.
/// Forward() is the plain sum of x[n] exp(-2 pi i k n / F); Inverse() divides by F, so that one
/// after the other gives the samples back to about 1e-7 of the largest.
///
/// Method: the even and odd samples as one complex sequence of half the length, an autosort
/// transform of it (after T. G. Stockham, "High-speed convolution and correlation", 1966), and a
/// pass that separates the two. Real and imaginary parts lie in arrays of their own, so that
/// neighbours always go through the same steps.
///
/// Threads: the constructor is [setup]. An object carries its working buffer: [process] calls come
/// from one thread at a time; they neither allocate nor fail. Pointers may have any alignment.
template <>
class FFTImpl<float> {
public:
    static constexpr int MinOrder = 3;
    static constexpr int MaxOrder = 17;

    /// Whether there is a transform of 2^order samples. [any]
    static constexpr bool IsSupported(int order) noexcept
    {
        return order >= MinOrder && order <= MaxOrder;
    }

    /// Makes the tables, about 4 F floats with the working buffer. Throws std::invalid_argument for
    /// an order that isn't supported. Tests name the kernels of a level. [setup]
    explicit FFTImpl(int newOrder,
                     const Kernels::FftKernels& newKernels = Kernels::GetKernels().fft);

    FFTImpl(const FFTImpl&) = delete; // its work would be in the original
    FFTImpl& operator=(const FFTImpl&) = delete;
    FFTImpl(FFTImpl&&) noexcept = default;
    FFTImpl& operator=(FFTImpl&&) noexcept = default;
    ~FFTImpl() = default;

    int GetOrder() const noexcept { return order; }
    int GetSize() const noexcept { return 1 << order; } ///< F, samples

    /// `samples` has F floats, `spectrum` F + 2; they may be the same memory. [process]
    void Forward(const float* samples, float* spectrum) noexcept UTIL_NONBLOCKING;

    /// Forward() of samples[i] * window[i]. [process]
    void ForwardOfProduct(const float* samples, const float* window, float* spectrum) noexcept
        UTIL_NONBLOCKING;

    /// One part of ForwardOfProduct() of which only bins 0 to binCount - 1 come out, 2 * binCount
    /// floats, and with them the power re^2 + im^2 of all bins 0 to F/2. `binCount` is 0 to F/2 +
    /// 1. Neither output may overlap another array. All parts get the same arguments, one after the
    /// other, and nothing else is done with this transform between them. [process]
    void ForwardOfProductWithPower(FFTPart part,
                                   const float* samples,
                                   const float* window,
                                   int binCount,
                                   float* spectrum,
                                   float* power) noexcept UTIL_NONBLOCKING;

    /// Powers re^2 + im^2 of the transform of samples[i] * window[i] for i below `count`, at most
    /// F/4, and zeros behind them. `power` has F/2 + 1 floats, of which those below `binCount` are
    /// of use. Nothing overlaps. [process]
    void PowerOfPaddedProduct(const float* samples,
                              const float* window,
                              int count,
                              int binCount,
                              float* power) noexcept UTIL_NONBLOCKING;

    /// Counterpart of Forward(); the imaginary parts of bins 0 and F/2 are not read. Leaves
    /// `spectrum` as it is unless `samples` is the same memory. [process]
    void Inverse(const float* spectrum, float* samples) noexcept UTIL_NONBLOCKING;

    /// One part, as above, of Inverse() of a spectrum that is 0 from bin `binCount` on, 0 to F/2 +
    /// 1, of which 2 * binCount floats are read, times a window and added: sums[i] += samples[i] *
    /// window[i]. Neither overlaps another array. [process]
    void AddInverseOfLowBins(FFTPart part,
                             const float* spectrum,
                             int binCount,
                             const float* window,
                             float* sums) noexcept UTIL_NONBLOCKING;

private:
    void MakeFirstFactors();
    void MakeMiddleFactors();
    void MakeSeparationTable();
    void MakeDirectTable();
    Kernels::FftTables GetTables() noexcept UTIL_NONBLOCKING;
    std::complex<float> GetDirectBin(std::ptrdiff_t bin) const noexcept UTIL_NONBLOCKING;
    void ForwardDirect(float* spectrum) noexcept UTIL_NONBLOCKING;
    void ForwardDirectWithPower(int binCount, float* spectrum, float* power) noexcept
        UTIL_NONBLOCKING;
    void InverseDirect(float* samples) const noexcept UTIL_NONBLOCKING;
    void
    AddInverseDirect(const float* spectrum, int binCount, const float* window, float* sums) noexcept
        UTIL_NONBLOCKING;
    bool IsDirect() const noexcept { return GetSize() <= LongestDirect; }

    static constexpr int LongestDirect = 64;

    const Kernels::FftKernels* kernels;
    int order;
    int half; // length of the complex transform, F / 2
    // Kernels::FftTables describes what these three hold.
    Util::AlignedVector<float> first;
    std::vector<float> middle;
    Util::AlignedVector<float> separation;
    std::vector<float> direct; // cosines of one turn in F steps; only of the shortest transforms
    Util::AlignedVector<float> work;
};

} // namespace DSP
