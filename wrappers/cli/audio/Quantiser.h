// SPDX-License-Identifier: ISC
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <span>

namespace Cli {

/// Steps from zero to full scale of an integer format with `bits` bits, 8 to 32.
inline double StepsOf(int bits)
{
    return std::ldexp(1.0, bits - 1);
}

/// The step nearest to `sample` (full scale 1.0; ties to even), held between the least and the
/// greatest number of the format instead of wrapping around.
inline double RoundToStep(double sample, double steps)
{
    // Doubles of this size are whole numbers, so that the sum is rounded to one: as nearbyint()
    // does, but without a call for every sample.
    constexpr double WholeNumbers = 0x1.8p52;
    return std::clamp(sample * steps, -steps, steps - 1.0) + WholeNumbers - WholeNumbers;
}

/// Brings samples to the steps of an integer format, with or without dither of triangular density,
/// two steps wide. The noise is the same in every run.
class Quantiser {
public:
    enum class Dither { Off, Triangular };

    Quantiser(int bits, Dither newDither)
        : steps(StepsOf(bits))
        , dither(newDither)
    {
    }

    /// Replaces each sample by the nearest one that the format can hold.
    void Apply(std::span<double> samples)
    {
        if (dither == Dither::Triangular) {
            AddNoise(samples);
        }
        const double step = 1.0 / steps; // a power of two
        for (double& sample : samples) {
            sample = RoundToStep(sample, steps) * step;
        }
    }

    /// The same, but leaves those alone that are the ones `before` and that the format can hold:
    /// they get no dither either.
    void ApplyToChanged(std::span<const double> before, std::span<double> samples)
    {
        // Most stretches have nothing to be changed, which a loop without branches sees soonest.
        constexpr size_t Stretch = 256;
        for (size_t begin = 0; begin < samples.size(); begin += Stretch) {
            const size_t end = std::min(begin + Stretch, samples.size());
            size_t changed = 0;
            for (size_t i = begin; i < end; ++i) {
                changed += IsKept(before[i], samples[i]) ? 0 : 1;
            }
            for (size_t i = begin; changed > 0 && i < end; ++i) {
                if (!IsKept(before[i], samples[i])) {
                    Apply(samples.subspan(i, 1));
                }
            }
        }
    }

private:
    // Whether a sample is the one before and the format can hold it.
    bool IsKept(double before, double sample) const
    {
        const bool isHeld = RoundToStep(sample, steps) * (1.0 / steps) == sample;
        return (static_cast<int>(sample == before) & static_cast<int>(isHeld)) != 0;
    }

    void AddNoise(std::span<double> samples)
    {
        for (double& sample : samples) {
            sample += (Uniform() + Uniform() - 1.0) / steps;
        }
    }

    // 0 to 1; the distributions of the standard library differ between its makers.
    double Uniform() { return static_cast<double>(random()) / 4294967296.0; }

    double steps;
    Dither dither;
    std::mt19937 random{1};
};

} // namespace Cli
