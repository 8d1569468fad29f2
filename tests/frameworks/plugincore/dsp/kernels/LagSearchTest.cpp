// SPDX-License-Identifier: ISC
#include "frameworks/plugincore/dsp/kernels/LagSearch.h"

#include "tests/frameworks/plugincore/dsp/kernels/Levels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <random>

using namespace DSP::Kernels;

namespace {

void ForEachLevel(const std::function<void(const LagSearchKernels&)>& check)
{
    for (const Level level : Support::GetSupportedLevels()) {
        SCOPED_TRACE(static_cast<int>(level));
        check(GetKernels(level).lagSearch);
    }
}

/// So many values, and the zeros behind that a search needs.
std::vector<float> MakeValues(std::size_t count, unsigned seed)
{
    std::minstd_rand random(seed);
    std::uniform_real_distribution<float> level(0, 1);
    std::vector<float> values(count);
    std::generate(values.begin(), values.end(), [&] { return level(random); });
    values.resize(count + LagPadding);
    return values;
}

/// As it is said of one lag after the other.
void ErasePlainly(std::vector<float>& values, int centre, int last)
{
    const std::vector<float> before = values;
    const auto erase = [&](int direction) {
        const auto at = [&](int step) {
            return static_cast<std::size_t>(centre + step * direction);
        };
        for (int step = 0; centre + step * direction >= 0 && centre + step * direction <= last;
             ++step) {
            if (step >= 5 && before[at(step)] > before[at(step - 1)]) {
                return;
            }
            values[at(step)] = 0;
        }
    };
    erase(-1);
    erase(1);
}

/// Scores that are these values from a lag on.
class Scores {
public:
    Scores(const LagSearchKernels& kernels, std::vector<float> wanted, int firstLag)
    {
        wanted.resize((wanted.size() + ScoreBlock - 1) / ScoreBlock * ScoreBlock);
        std::vector<float> smoothed(wanted.size());
        std::vector<float> weights(wanted.size(), 1.0F);
        values.resize(wanted.size() + LagPadding);
        maxima.resize(wanted.size() / 4);
        kernels.score({}, wanted.data(), {smoothed.data(), weights.data()}, firstLag, Get());
    }

    LagScores Get()
    {
        return {
            values.data(), maxima.data(), static_cast<std::ptrdiff_t>(values.size()) - LagPadding};
    }

private:
    std::vector<float> values;
    std::vector<float> maxima;
};

} // namespace

TEST(LagSearch, FirstOfTheLargestWins)
{
    ForEachLevel([](const LagSearchKernels& kernels) {
        for (int count = 1; count < 70; ++count) {
            const int first = count % 40;
            std::vector<float> values = MakeValues(static_cast<std::size_t>(first + count), 5);
            const auto begin = values.begin() + first;
            const auto largest = std::max_element(begin, begin + count);
            std::fill(values.begin(), begin, 2.0F); // outside the range
            EXPECT_EQ(kernels.findFirstLargest(Scores(kernels, values, first).Get()),
                      largest - values.begin());
            *largest = 1; // twice the same
            *begin = 1;
            EXPECT_EQ(kernels.findFirstLargest(Scores(kernels, values, first).Get()), first);
            std::fill(begin, values.end(), 0.0F);
            EXPECT_EQ(kernels.findFirstLargest(Scores(kernels, values, first).Get()), 0);
        }
    });
}

// From one best to the next until nothing is left.
TEST(LagSearch, ErasedScoresAreNotFoundAgain)
{
    for (const int last : {33, 100, 245}) {
        const std::vector<float> values = MakeValues(static_cast<std::size_t>(last) + 1, 6);
        ForEachLevel([&](const LagSearchKernels& kernels) {
            Scores scores(kernels, values, 0);
            std::vector<float> expected = values;
            auto best = std::max_element(expected.begin(), expected.end());
            for (; *best > 0; best = std::max_element(expected.begin(), expected.end())) {
                const int found = kernels.findFirstLargest(scores.Get());
                ASSERT_EQ(found, best - expected.begin());
                kernels.eraseScore(scores.Get(), found, last);
                ErasePlainly(expected, found, last);
            }
            EXPECT_EQ(kernels.findFirstLargest(scores.Get()), 0);
        });
    }
}

// Peaks of every width at every place, so that both ends and every place in a vector come up.
TEST(LagSearch, ErasesWhatThePlainWalkErases)
{
    for (const double width : {2.0, 9.0, 33.0, 200.0}) {
        for (const int last : {11, 62, 63}) {
            for (int centre = 0; centre <= last; ++centre) {
                std::vector<float> values = MakeValues(static_cast<std::size_t>(last) + 1, 3);
                for (int i = 0; i <= last; ++i) {
                    const double slope = std::max(0.0, 1 - std::abs(i - centre) / width);
                    float& value = values[static_cast<std::size_t>(i)];
                    value = value * 0.02F + static_cast<float>(slope);
                }
                std::vector<float> expected = values;
                ErasePlainly(expected, centre, last);
                ForEachLevel([&](const LagSearchKernels& kernels) {
                    std::vector<float> erased = values;
                    kernels.erasePeak(erased.data(), centre, last);
                    EXPECT_EQ(erased, expected) << width << " " << last << " " << centre;
                });
            }
        }
    }
}

TEST(LagSearch, ScoresFollowByTheirTimes)
{
    constexpr std::size_t Count = 64;
    constexpr int FirstLag = 11;
    const ScoreTimes times{.rise = 0.75F, .fall = 0.25F, .relaxation = 0.5F};
    std::vector<float> values = MakeValues(Count, 1);
    std::vector<float> smoothed = MakeValues(Count, 2);
    const std::vector<float> weights = MakeValues(Count, 3);
    values[5] = 0; // a state that has all but faded ends at 0
    smoothed[5] = 1.2e-30F;
    ForEachLevel([&](const LagSearchKernels& kernels) {
        std::vector<float> state = smoothed;
        std::vector<float> weight = weights;
        std::vector<float> scores(Count + LagPadding);
        std::vector<float> maxima(Count / 4);
        kernels.score(times,
                      values.data(),
                      {state.data(), weight.data()},
                      FirstLag,
                      {scores.data(), maxima.data(), Count});
        EXPECT_EQ(state[5], 0.0F);
        for (std::size_t i = 0; i < Count; ++i) {
            const float part = values[i] > smoothed[i] ? 0.75F : 0.25F;
            const float followed = smoothed[i] + (values[i] - smoothed[i]) * part;
            EXPECT_EQ(state[i], i == 5 ? 0.0F : followed) << i;
            EXPECT_EQ(scores[i], i < FirstLag ? 0.0F : weights[i] * state[i]) << i;
            EXPECT_EQ(weight[i], weights[i] + (1 - weights[i]) * 0.5F) << i;
        }
    });
}

// Angles and tables of any kind, so that every lane has its own value and a place to go wrong in.
TEST(LagSearch, BellsAreTheSameBitsAsWrittenDown)
{
    const float angle = 0.7F;
    const Bell bell{.index = 20, .cosine = std::cos(angle), .sine = std::sin(angle)};
    for (const int margin : {8, 10, 11, 16}) {
        const auto count = static_cast<std::size_t>(2 * margin + 1);
        const std::vector<float> cosines = MakeValues(count, 7);
        const std::vector<float> sines = MakeValues(count, 8);
        const BellTable table{cosines.data(), sines.data(), margin};
        std::vector<float> weights = MakeValues(60, 9);
        // Around the bells, so that some weights win and some lose.
        std::transform(weights.begin(), weights.end(), weights.begin(), [](float weight) {
            return weight + 0.5F;
        });
        std::vector<float> raised = weights;
        std::vector<float> lowered = weights;
        for (std::size_t i = 0; i < count; ++i) {
            const float value = cosines[i] * bell.cosine + sines[i] * bell.sine;
            const float height = value * 0.5F + 0.5F;
            const std::size_t at = 20 + i - static_cast<std::size_t>(margin);
            raised[at] = std::max(weights[at], height * 0.375F + 1.0F);
            lowered[at] = std::min(weights[at], 1.0F - height * 0.3F);
        }
        ForEachLevel([&](const LagSearchKernels& kernels) {
            std::vector<float> changed = weights;
            kernels.raise(table, bell, 0.375F, changed.data());
            EXPECT_EQ(changed, raised) << margin;
            changed = weights;
            kernels.lower(table, bell, 0.3F, changed.data());
            EXPECT_EQ(changed, lowered) << margin;
        });
    }
}
