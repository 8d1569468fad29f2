// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/Biquad.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using DSP::Synapse::Biquad;
using DSP::Synapse::BiquadCoefficients;

/// Gain at a frequency, measured: level of a sine over whole periods after the filter has
/// settled.
double MeasureGain(const BiquadCoefficients& coefficients, double frequencyHz, double sampleRate)
{
    Biquad<double> filter;
    filter.SetCoefficients(coefficients);
    double power = 0;
    const auto total = static_cast<int>(sampleRate);
    const int half = total / 2; // until then it settles
    for (int i = 0; i < total; ++i) {
        const double phase = 2 * std::numbers::pi * frequencyHz * i / sampleRate;
        const double y = filter.Process(std::sin(phase));
        if (i >= half) {
            power += y * y;
        }
    }
    return std::sqrt(2 * power / half);
}

/// Gain of the analogue Butterworth filter of second order, its frequencies bent by the bilinear
/// transform.
double Butterworth(double frequencyHz, double cornerHz, double sampleRate, bool isLowpass)
{
    const double f = std::tan(std::numbers::pi * frequencyHz / sampleRate);
    const double c = std::tan(std::numbers::pi * cornerHz / sampleRate);
    const double ratio = isLowpass ? f / c : c / f;
    return 1 / std::sqrt(1 + std::pow(ratio, 4));
}

TEST(Biquad, FollowsTheButterworthCurve)
{
    for (const double f : {30.0, 100.0, 300.0, 1000.0, 3000.0}) {
        EXPECT_NEAR(MeasureGain(DSP::Synapse::MakeLowpass(300, 8000), f, 8000),
                    Butterworth(f, 300, 8000, true),
                    1e-5)
            << f;
        EXPECT_NEAR(MeasureGain(DSP::Synapse::MakeHighpass(100, 8000), f, 8000),
                    Butterworth(f, 100, 8000, false),
                    1e-5)
            << f;
    }
}

TEST(Biquad, ACornerBeyondTheSpectrumPassesOrSilences)
{
    Biquad<double> lowpass;
    lowpass.SetCoefficients(DSP::Synapse::MakeLowpass(4001, 8000));
    Biquad<double> highpass;
    highpass.SetCoefficients(DSP::Synapse::MakeHighpass(4001, 8000));
    for (const double x : {1.0, -0.5, 0.25}) {
        EXPECT_EQ(lowpass.Process(x), x);
        EXPECT_EQ(highpass.Process(x), 0.0);
    }
}

} // namespace
