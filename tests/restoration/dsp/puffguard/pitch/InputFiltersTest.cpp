// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/InputFilters.h"

#include "tests/frameworks/plugincore/dsp/kernels/Levels.h"
#include "tests/support/Signals.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <span>

namespace {

using DSP::Synapse::Biquad;
using DSP::Synapse::InputFilters;

/// One section after the other, sample by sample, with a high-pass in `High`.
template <typename High>
std::vector<float> FilterPlainly(const std::vector<float>& samples, double rate)
{
    Biquad<High> first;
    Biquad<High> second;
    Biquad<float> lowpass;
    const double pi = std::acos(-1.0);
    first.SetCoefficients(DSP::Synapse::MakeHighpass(40, rate, 0.5 / std::cos(pi / 8)));
    second.SetCoefficients(DSP::Synapse::MakeHighpass(40, rate, 0.5 / std::cos(3 * pi / 8)));
    lowpass.SetCoefficients(DSP::Synapse::MakeLowpass(300, rate));
    std::vector<float> outputs;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        const float offset = i % 256 < 128 ? 1e-10F : -1e-10F;
        const High high = second.Process(first.Process(static_cast<High>(samples[i])));
        outputs.push_back(lowpass.Process(static_cast<float>(high) + offset));
    }
    return outputs;
}

/// That `filters` give `expected` for `samples`, before and after a reset, in calls of up to
/// `most`.
void ExpectOutputs(InputFilters& filters,
                   const std::vector<float>& samples,
                   const std::vector<float>& expected,
                   std::size_t most)
{
    for (const bool afterReset : {false, true}) {
        std::vector<float> outputs(samples.size());
        std::size_t call = afterReset ? 1 : 0;
        for (std::size_t at = 0; at < samples.size(); call = call % most + 1) {
            const auto piece =
                std::span(samples).subspan(at).first(std::min(call, samples.size() - at));
            filters.Process(piece, outputs.data() + at);
            at += piece.size();
        }
        EXPECT_EQ(outputs, expected) << most;
        filters.Reset();
    }
}

// Noise and then silence, in which the offset shows; calls of every length up to that of a call.
TEST(InputFilters, EveryLevelAndCutGivesTheBitsOfThePlainSections)
{
    std::vector<float> samples = Support::MakeNoise(2000, 4);
    samples.resize(30000);
    for (const double rate : {44100.0, 768000.0}) {
        const bool isPrecise = rate > 400000;
        const std::vector<float> expected =
            isPrecise ? FilterPlainly<double>(samples, rate) : FilterPlainly<float>(samples, rate);
        for (const DSP::Kernels::Level kernels : Support::GetSupportedLevels()) {
            SCOPED_TRACE(static_cast<int>(kernels));
            for (const std::size_t most : {std::size_t{5}, std::size_t{300}, samples.size()}) {
                InputFilters filters(rate, DSP::Kernels::GetKernels(kernels).cascade);
                ExpectOutputs(filters, samples, expected, most);
            }
        }
    }
}

TEST(InputFilters, AConstantFadesAtEveryRate)
{
    // The poles, 40 Hz * 2 pi * 0.38 and faster, have left far below 1e-10; what remains is the
    // rounding of floats. A rest that isn't a number fails, too.
    for (const double rate : {4e3, 44.1e3, 192e3, 400e3, 401e3, 768e3, 1e6, 1.5e6, 1.8e6}) {
        std::vector<float> samples(static_cast<std::size_t>(2 * rate), 1.0F);
        InputFilters filters(rate);
        filters.Process(samples, samples.data());
        EXPECT_LT(std::fabs(samples.back()), rate > 400e3 ? 1e-6F : 1e-3F) << rate;
    }
}

} // namespace
