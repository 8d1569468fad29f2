// SPDX-License-Identifier: ISC
#include "restoration/dsp/puffguard/HopSchedule.h"

#include "restoration/dsp/puffguard/pitch/PitchDetect.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <set>
#include <tuple>
#include <vector>

namespace DSP::HopSchedule {

namespace {

using Pitch = PitchDetect::PitchDetect;

TEST(HopSchedule, DoesEverythingOnceAndInItsOrder)
{
    for (uint32_t channels = 1; channels <= 24; ++channels) {
        uint32_t transforms = 0;
        uint32_t tracker = 0;
        std::vector<Task> tasks;
        std::set<std::tuple<bool, uint32_t, FFTPart>> parts;
        for (uint32_t step = 0; step < StepCount; ++step) {
            const Step& work = GetTable(channels)[step];
            const uint32_t done = GetTransformPartsDone(step, channels);
            EXPECT_TRUE(tasks.size() < 4 || done == transforms) << "the frames have moved on";
            for (; transforms < done; ++transforms) {
                const TransformPart next = GetTransformPart(transforms, channels);
                EXPECT_TRUE(parts.insert({next.isForward, next.channel, next.part}).second);
                EXPECT_TRUE(tasks.empty() || !next.isForward) << channels;
                EXPECT_EQ(transforms % 3, static_cast<uint32_t>(next.part)) << "others in between";
            }
            tracker += work.trackerParts;
            EXPECT_TRUE(work.task != Task::Search || tracker == uint32_t{Pitch::BlockParts});
            if (work.task != Task::None) {
                tasks.push_back(work.task);
            }
        }
        EXPECT_EQ(transforms, 6 * channels);
        EXPECT_EQ(tracker, uint32_t{Pitch::BlockParts});
        EXPECT_EQ(tasks, (std::vector{Task::Measure, Task::Detect, Task::Search, Task::Repair}))
            << channels;
    }
}

/// Microseconds of one machine that each piece takes where a burst is repaired; they matter only as
/// proportions. Per piece and not per step, so that a table can be changed without measuring.
struct Costs {
    uint32_t callSteps; ///< that a call of 64 frames has
    std::vector<double> forward;
    std::vector<double> back;
    std::vector<double> correlations;
    double run;
    double detect;
    double search;
    std::vector<double> repair; ///< mono, stereo, as what follows
    std::vector<double> giveOut;
    double call; ///< the rest of it
};

const Costs At96kHz = {
    .callSteps = 1,
    .forward = {2.8, 1.45, 3.0},
    .back = {2.6, 1.4, 3.2},
    .correlations = {1.25, 1.55, 1.7, 1.7, 1.7, 1.7, 2.8, 2.8, 3.6, 3.4, 0.65, 0.65},
    .run = 1.05,
    .detect = 0.25,
    .search = 4.4,
    .repair = {2.0, 3.7},
    .giveOut = {1.8, 3.6},
    .call = 1.0};
const Costs At48kHz = {
    .callSteps = 2,
    .forward = {1.3, 0.7, 1.05},
    .back = {1.25, 0.72, 0.95},
    .correlations = {0.55, 0.72, 0.65, 0.65, 0.65, 0.65, 1.4, 1.4, 1.6, 1.8, 0.35, 0.35},
    .run = 0.9,
    .detect = 0.25,
    .search = 4.0,
    .repair = {1.9, 3.5},
    .giveOut = {0.55, 1.1},
    .call = 1.0};

double GetTaskCost(const Costs& costs, Task task, uint32_t channels)
{
    switch (task) {
    case Task::Detect:
        return costs.detect;
    case Task::Search:
        return costs.search;
    case Task::Repair:
        return costs.repair[channels - 1];
    default:
        return 0;
    }
}

std::vector<double> GetSteps(const Costs& costs, uint32_t channels)
{
    std::vector<double> steps;
    uint32_t transforms = 0;
    std::size_t tracker = 0;
    for (uint32_t step = 0; step < StepCount; ++step) {
        const Step& work = GetTable(channels)[step];
        double sum = GetTaskCost(costs, work.task, channels);
        for (; transforms < GetTransformPartsDone(step, channels); ++transforms) {
            const TransformPart next = GetTransformPart(transforms, channels);
            const std::vector<double>& parts = next.isForward ? costs.forward : costs.back;
            sum += parts[static_cast<std::size_t>(next.part)];
        }
        for (uint32_t i = 0; i < work.trackerParts; ++i, ++tracker) {
            sum += tracker < costs.correlations.size() ? costs.correlations[tracker] : costs.run;
        }
        steps.push_back(sum);
    }
    steps.back() += costs.giveOut[channels - 1];
    return steps;
}

TEST(HopSchedule, GivesNoSmallCallMuchMoreThanItsShare)
{
    for (const Costs& costs : {At96kHz, At48kHz}) {
        for (const uint32_t channels : {1U, 2U}) {
            const std::vector<double> steps = GetSteps(costs, channels);
            double longest = 0;
            for (auto step = steps.begin(); step != steps.end(); step += costs.callSteps) {
                longest = std::max(longest, std::accumulate(step, step + costs.callSteps, 0.0));
            }
            const double calls = static_cast<double>(StepCount) / costs.callSteps;
            const double mean = std::accumulate(steps.begin(), steps.end(), 0.0) / calls;
            EXPECT_LT((longest + costs.call) / (mean + costs.call), 1.4)
                << channels << " channels, " << costs.callSteps << " steps a call";
        }
    }
}

} // namespace

} // namespace DSP::HopSchedule
