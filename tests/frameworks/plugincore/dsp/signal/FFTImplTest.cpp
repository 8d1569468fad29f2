// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/signal/FFTImpl.h"
#include "tests/frameworks/plugincore/dsp/kernels/Levels.h"
#include "tests/support/PlainTransform.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <functional>
#include <stdexcept>

namespace {

using DSP::FFTImpl;
using Support::MakeNoise;
using Support::Spectrum;

// Rounding of single precision grows with the number of stages; measured against the largest bin,
// 17 stages stay below 4e-7. A wrong sign or factor anywhere is larger by orders of magnitude.
constexpr double Tolerance = 1e-6;

/// Largest difference of the bins, as part of the largest bin.
double LargestDifference(const float* packed, const Spectrum& wanted)
{
    double largest = 0;
    double difference = 0;
    for (std::size_t k = 0; k <= wanted.size() / 2; ++k) {
        const std::complex<double> bin(std::complex(packed[2 * k], packed[2 * k + 1]));
        largest = std::max(largest, std::abs(wanted[k]));
        difference = std::max(difference, std::abs(bin - wanted[k]));
    }
    return difference / largest;
}

class FFTImplTest : public testing::TestWithParam<int> {
protected:
    std::size_t size = std::size_t{1} << GetParam();
    FFTImpl<float> fft{GetParam()};
    std::vector<float> spectrum = std::vector<float>(size + 2);
};

TEST_P(FFTImplTest, ForwardIsTheTransformInDoublePrecision)
{
    const std::vector<float> samples = MakeNoise(size, 1);
    fft.Forward(samples.data(), spectrum.data());
    const Spectrum wanted = Support::TransformInDouble({samples.begin(), samples.end()});
    EXPECT_LT(LargestDifference(spectrum.data(), wanted), Tolerance);
    EXPECT_EQ(spectrum[1], 0.0F);
    EXPECT_EQ(spectrum[size + 1], 0.0F);
}

TEST_P(FFTImplTest, InverseGivesTheSamplesBackAndLeavesTheSpectrum)
{
    const std::vector<float> samples = MakeNoise(size, 2);
    fft.Forward(samples.data(), spectrum.data());
    spectrum[1] = 1e9F; // the imaginary parts of the ends are not read
    spectrum[size + 1] = -1e9F;
    const std::vector<float> before = spectrum;
    std::vector<float> back(size);
    fft.Inverse(spectrum.data(), back.data());
    EXPECT_EQ(spectrum, before);
    for (std::size_t i = 0; i < size; ++i) {
        ASSERT_NEAR(back[i], samples[i], 2e-6) << i;
    }
}

// Nor what stands beside the memory, nor is it written to.
TEST_P(FFTImplTest, AlignmentAndSharedMemoryChangeNoBit)
{
    constexpr std::size_t Guard = 4;
    const std::vector<float> samples = MakeNoise(size, 6);
    fft.Forward(samples.data(), spectrum.data());
    std::vector<float> back(size);
    fft.Inverse(spectrum.data(), back.data());
    for (std::size_t shift = 0; shift < 4; ++shift) {
        std::vector<float> shared(Guard + shift + size + 2 + Guard, std::nanf(""));
        float* const place = shared.data() + Guard + shift;
        std::copy(samples.begin(), samples.end(), place);
        const auto countNumbers = [&] {
            return std::count_if(
                shared.begin(), shared.end(), [](float value) { return !std::isnan(value); });
        };
        fft.Forward(place, place);
        EXPECT_TRUE(std::equal(spectrum.begin(), spectrum.end(), place)) << shift;
        EXPECT_EQ(countNumbers(), static_cast<std::ptrdiff_t>(size + 2)) << shift;
        fft.Inverse(place, place);
        EXPECT_TRUE(std::equal(back.begin(), back.end(), place)) << shift;
        EXPECT_EQ(countNumbers(), static_cast<std::ptrdiff_t>(size + 2)) << shift;
    }
}

/// Counts of low bins: around vectors, a repair's, around the middle, up to all of `all`.
std::vector<int> GetBinCounts(int all)
{
    const int middle = all / 2;
    std::vector<int> counts = {0, 1, 2, 223, middle - 1, middle, middle + 1, all - 2, all - 1, all};
    counts.erase(std::remove_if(counts.begin(), counts.end(), [=](int n) { return n > all; }),
                 counts.end());
    return counts;
}

TEST_P(FFTImplTest, AtEveryLevelProductsLowBinsAndPowersAreThoseOfTheWholeSpectrum)
{
    const std::vector<float> samples = MakeNoise(size, 12);
    const std::vector<float> window = MakeNoise(size, 13);
    const std::size_t all = size / 2 + 1;
    std::vector<float> windowed(size);
    std::transform(
        samples.begin(), samples.end(), window.begin(), windowed.begin(), std::multiplies<>());
    fft.Forward(windowed.data(), spectrum.data());
    std::vector<float> wantedPower(all + 1, -1.0F); // with a guard behind it
    for (std::size_t k = 0; k < all; ++k) {
        const float re = spectrum[2 * k];
        const float im = spectrum[2 * k + 1];
        wantedPower[k] = re * re + im * im;
    }
    for (const DSP::Kernels::Level level : Support::GetSupportedLevels()) {
        FFTImpl<float> transform(GetParam(), DSP::Kernels::GetKernels(level).fft);
        std::vector<float> whole(size + 2);
        transform.Forward(windowed.data(), whole.data());
        EXPECT_EQ(whole, spectrum) << static_cast<int>(level);
        transform.ForwardOfProduct(samples.data(), window.data(), whole.data());
        EXPECT_EQ(whole, spectrum) << static_cast<int>(level);
        for (const int count : GetBinCounts(static_cast<int>(all))) {
            std::vector<float> wanted(size + 2, 12345.0F);
            std::vector<float> low = wanted;
            std::copy_n(spectrum.begin(), 2 * count, wanted.begin());
            std::vector<float> power(all + 1, -1.0F);
            for (const DSP::FFTPart part : DSP::FFTParts) {
                transform.ForwardOfProductWithPower(
                    part, samples.data(), window.data(), count, low.data(), power.data());
            }
            EXPECT_EQ(low, wanted) << static_cast<int>(level) << ", " << count;
            EXPECT_EQ(power, wantedPower) << static_cast<int>(level) << ", " << count;
        }
    }
}

TEST_P(FFTImplTest, AtEveryLevelPowersOfAPaddedProductAreThoseOfTheWholeTransform)
{
    const std::vector<float> samples = MakeNoise(size, 15);
    const std::vector<float> window = MakeNoise(size, 16);
    const std::size_t all = size / 2 + 1;
    for (const std::size_t count : {std::size_t{1}, size / 16 + 1, size / 4}) {
        std::vector<float> padded(size);
        std::transform(samples.begin(),
                       samples.begin() + static_cast<std::ptrdiff_t>(std::min(count, size / 4)),
                       window.begin(),
                       padded.begin(),
                       std::multiplies<>());
        fft.Forward(padded.data(), spectrum.data());
        for (const DSP::Kernels::Level level : Support::GetSupportedLevels()) {
            FFTImpl<float> transform(GetParam(), DSP::Kernels::GetKernels(level).fft);
            for (const std::size_t bins : {all / 3, all}) {
                std::vector<float> power(all);
                transform.PowerOfPaddedProduct(samples.data(),
                                               window.data(),
                                               static_cast<int>(std::min(count, size / 4)),
                                               static_cast<int>(bins),
                                               power.data());
                for (std::size_t k = 0; k < bins; ++k) {
                    const float re = spectrum[2 * k];
                    const float im = spectrum[2 * k + 1];
                    ASSERT_EQ(power[k], re * re + im * im) << static_cast<int>(level) << ", " << k;
                }
            }
        }
    }
}

TEST_P(FFTImplTest, AtEveryLevelTheInverseOfLowBinsTakesTheOthersAsZerosAndIsAdded)
{
    const std::vector<float> noise = MakeNoise(size + 2, 14);
    const std::vector<float> window = MakeNoise(size, 15);
    const std::vector<float> before = MakeNoise(size, 16);
    for (const DSP::Kernels::Level level : Support::GetSupportedLevels()) {
        FFTImpl<float> transform(GetParam(), DSP::Kernels::GetKernels(level).fft);
        for (const int count : GetBinCounts(static_cast<int>(size / 2 + 1))) {
            std::vector<float> zeroed(size + 2, 0.0F);
            std::vector<float> low(size + 2, std::nanf(""));
            std::copy_n(noise.begin(), 2 * count, zeroed.begin());
            std::copy_n(noise.begin(), 2 * count, low.begin());
            std::vector<float> wanted(size);
            std::vector<float> samples(size);
            fft.Inverse(zeroed.data(), wanted.data());
            transform.Inverse(zeroed.data(), samples.data());
            EXPECT_EQ(samples, wanted) << static_cast<int>(level) << ", " << count;
            std::vector<float> sums = before;
            for (const DSP::FFTPart part : DSP::FFTParts) {
                transform.AddInverseOfLowBins(part, low.data(), count, window.data(), sums.data());
            }
            for (std::size_t i = 0; i < size; ++i) {
                wanted[i] = before[i] + wanted[i] * window[i];
            }
            EXPECT_EQ(sums, wanted) << static_cast<int>(level) << ", " << count;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Orders,
                         FFTImplTest,
                         testing::Range(FFTImpl<float>::MinOrder, FFTImpl<float>::MaxOrder + 1));

TEST(FFTImplSizes, OrdersWithoutATransformAreRefused)
{
    EXPECT_THROW(FFTImpl<float>(2), std::invalid_argument);
    EXPECT_THROW(FFTImpl<float>(18), std::invalid_argument);
    EXPECT_THROW(FFTImpl<float>(-1), std::invalid_argument);
}

} // namespace
