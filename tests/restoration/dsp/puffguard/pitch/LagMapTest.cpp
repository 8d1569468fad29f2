// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/pitch/LagMap.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

using DSP::Synapse::AnalysisSizes;
using DSP::Synapse::LagMap;

/// The marks as they are defined, with a cosine for each lag.
class PlainTwin {
public:
    PlainTwin(int newLastLag, int newMargin)
        : margin(newMargin)
        , weights(static_cast<std::size_t>(newLastLag) + 1, 1.0)
    {
    }

    void Mark(int found, double lag, double clarity)
    {
        ForRange(found, lag, [&](double& weight, double bell) {
            weight = std::max(weight, bell * (clarity + 0.5) + 1);
        });
        const auto lower = [&](double& weight, double bell) {
            weight = std::min(weight, 1 - bell * std::sqrt(clarity) * 0.9);
        };
        ForRange(found / 2, lag / 2, lower);
        ForRange(found * 2, lag * 2, lower);
    }

    const std::vector<double>& GetWeights() const { return weights; }

private:
    template <typename Action>
    void ForRange(int index, double centre, Action action)
    {
        for (int i = 0; i < static_cast<int>(weights.size()); ++i) {
            if (std::abs(i - index) <= margin) {
                const double angle = std::numbers::pi * (i - centre) / margin;
                action(weights[static_cast<std::size_t>(i)], std::cos(angle) * 0.5 + 0.5);
            }
        }
    }

    int margin;
    std::vector<double> weights;
};

TEST(LagMap, MarksAsDefined)
{
    const AnalysisSizes sizes = AnalysisSizes::ForRate(44100);
    LagMap map(sizes);
    ASSERT_EQ(map.GetMargin(), 8); // round(1.1), at least 8
    PlainTwin twin(sizes.maxLag, 8);
    struct Case {
        int found;
        float lag;
        float clarity;
    };
    // At the short end, in the middle with its double just inside and just outside, at the end.
    for (const Case c : {Case{17, 17.4F, 0.9F},
                         Case{60, 66.0F, 0.5F},
                         Case{124, 123.6F, 1.0F},
                         Case{200, 199.5F, 0.2F},
                         Case{245, 245.0F, 0.0F}}) {
        map.Mark(c.found, c.lag, c.clarity);
        twin.Mark(c.found, static_cast<double>(c.lag), static_cast<double>(c.clarity));
        for (std::size_t i = 0; i < twin.GetWeights().size(); ++i) {
            ASSERT_NEAR(static_cast<double>(map.GetWeights()[i]), twin.GetWeights()[i], 1e-6)
                << c.found << " " << i;
        }
    }
}

TEST(LagMap, MarginGrowsWithTheRate)
{
    EXPECT_EQ(LagMap(AnalysisSizes::ForRate(384000)).GetMargin(), 10); // round(9.6)
}

TEST(LagMap, RelaxesTowardOneByItsTimeConstant)
{
    const AnalysisSizes sizes = AnalysisSizes::ForRate(44100);
    LagMap map(sizes);
    map.Mark(100, 100.0F, 1.0F);
    ASSERT_NEAR(map.GetWeights()[100], 2.5F, 1e-6F);
    ASSERT_NEAR(map.GetWeights()[50], 0.1F, 1e-6F);
    const std::vector<float> silence(
        static_cast<std::size_t>(DSP::Kernels::GetCorrelationStride(sizes.maxLag)));
    // 0.06 s at the tracker's rate of 344.5 Hz are 20.67 runs, so 62 runs are 3 time constants.
    for (int run = 0; run < 62; ++run) {
        map.Score(silence.data(), sizes.minLag);
    }
    EXPECT_NEAR(map.GetWeights()[100], 1 + 1.5 * std::exp(-62 / 20.671875), 1e-5);
    EXPECT_NEAR(map.GetWeights()[50], 1 - 0.9 * std::exp(-62 / 20.671875), 1e-5);
    map.Reset();
    EXPECT_EQ(map.GetWeights()[100], 1.0F);
}

} // namespace
