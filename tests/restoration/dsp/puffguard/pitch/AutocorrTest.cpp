// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/Autocorr.h"
#include "restoration/dsp/puffguard/pitch/CosineTransform.h"

#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <numbers>
#include <random>
#include <vector>

namespace {

using std::numbers::pi;

std::vector<float> MakeNoise(std::size_t count, unsigned seed, float low = -1, float high = 1)
{
    std::mt19937 random(seed);
    std::uniform_real_distribution<float> level(low, high);
    std::vector<float> noise(count);
    for (float& value : noise) {
        value = level(random);
    }
    return noise;
}

/// Inverse DFT of a real, symmetric spectrum, term by term.
double SumCosines(const std::vector<double>& values, std::size_t lag)
{
    const std::size_t n = values.size() - 1;
    double sum = values[0] + (lag % 2 == 0 ? values[n] : -values[n]);
    for (std::size_t j = 1; j < n; ++j) {
        const double angle = pi * static_cast<double>(j * lag % (2 * n)) / static_cast<double>(n);
        sum += 2 * values[j] * std::cos(angle);
    }
    return sum / static_cast<double>(2 * n);
}

/// The same autocorrelation in double precision, by the plain transform sums.
std::vector<double> MakeReference(const std::vector<float>& frame, std::size_t fftSize, int maxLag)
{
    const std::size_t n = frame.size();
    std::vector<double> windowed(n);
    for (std::size_t i = 0; i < n; ++i) {
        const double position = static_cast<double>(i) + 0.5;
        windowed[i] = static_cast<double>(frame[i]) *
                      (1 - std::cos(2 * pi * position / static_cast<double>(n)));
    }
    std::vector<double> magnitudes;
    for (std::size_t bin = 0; bin <= fftSize / 2; ++bin) {
        std::complex<double> sum = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const double turn = static_cast<double>(bin * i % fftSize);
            sum += windowed[i] * std::polar(1.0, -2 * pi * turn / static_cast<double>(fftSize));
        }
        magnitudes.push_back(std::abs(sum));
    }
    std::vector<double> correlation;
    for (int lag = 0; lag <= maxLag; ++lag) {
        correlation.push_back(SumCosines(magnitudes, static_cast<std::size_t>(lag)));
    }
    return correlation;
}

TEST(CosineTransform, EqualsTheSumOfCosines)
{
    for (int order = 3; order <= 10; ++order) {
        const std::size_t n = std::size_t{1} << order;
        const std::vector<float> values = MakeNoise(n + 1, static_cast<unsigned>(order), 0, 1);
        DSP::CosineTransform transform(order);
        for (const std::size_t count : {n, n - 1}) { // an even and an odd number of outputs
            std::vector<float> out(count);
            transform.Transform(values, out);
            const std::vector<double> exact(values.begin(), values.end());
            for (std::size_t k = 0; k < count; ++k) {
                // The values' mean is about 0.5, so outputs are below 0.5; a few float roundings.
                ASSERT_NEAR(static_cast<double>(out[k]), SumCosines(exact, k), 2e-7)
                    << order << " " << k;
            }
        }
    }
}

TEST(Autocorr, EqualsTheDoublePrecisionFormWhereverTheFrameWraps)
{
    constexpr int MaxLag = 90;
    DSP::Autocorr autocorr(MaxLag);
    ASSERT_EQ(autocorr.GetFrameLength(), 162);
    ASSERT_EQ(autocorr.GetFftSize(), 256); // not below 162 + 90
    const std::vector<float> frame = MakeNoise(162, 7);
    const std::vector<double> reference = MakeReference(frame, 256, MaxLag);
    const std::span<const float> whole(frame);
    for (const std::size_t split : {0U, 1U, 81U, 162U}) {
        std::vector<float> correlation(MaxLag + 1);
        autocorr.Compute(whole.first(split), whole.subspan(split), correlation);
        for (std::size_t lag = 0; lag <= MaxLag; ++lag) {
            ASSERT_NEAR(double{correlation[lag]}, reference[lag], 1e-6 * reference[0]) << lag;
        }
    }
}

TEST(Autocorr, CompensationFavoursLongLagsAndDropsNegativeValues)
{
    const DSP::Autocorr autocorr(100); // n = 180
    std::vector<float> correlation(101, 1.0F);
    correlation[50] = -1;
    autocorr.CompensateWindow(correlation);
    EXPECT_FLOAT_EQ(correlation[0], 1.0F);
    EXPECT_EQ(correlation[50], 0.0F);
    EXPECT_FLOAT_EQ(correlation[60], 1.5358984F); // (1 - cos 30 deg) * 4 + 1
    EXPECT_FLOAT_EQ(correlation[90], 2.1715729F); // (1 - cos 45 deg) * 4 + 1
}

} // namespace
